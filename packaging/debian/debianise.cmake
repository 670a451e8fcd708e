# Gives programs and documents of a package tree the form that Debian wants, before CPack packs it.
cmake_minimum_required(VERSION 3.25)

set(usr ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr)
set(documents ${usr}/share/doc/nox8)

file(GLOB programs ${usr}/bin/*)
execute_process(
    COMMAND strip --remove-section=.comment --remove-section=.note ${programs}
    COMMAND_ERROR_IS_FATAL ANY)

file(REMOVE ${documents}/LICENSE) # the copyright has its text
file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright ${CMAKE_CURRENT_LIST_DIR}/changelog
    DESTINATION ${documents}
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

file(GLOB pages ${usr}/share/man/man1/*.1)
execute_process(
    COMMAND gzip --best --no-name ${pages} ${documents}/changelog
    COMMAND_ERROR_IS_FATAL ANY)
