# Puts the documents of a package tree into the form that Debian wants, before CPack packs it.
cmake_minimum_required(VERSION 3.25)

set(share ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share)
file(REMOVE ${share}/doc/nox8/LICENSE) # copyright has its text
file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright ${CMAKE_CURRENT_LIST_DIR}/changelog
    DESTINATION ${share}/doc/nox8
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

file(GLOB pages ${share}/man/man1/*.1)
execute_process(
    COMMAND gzip --best --no-name ${pages} ${share}/doc/nox8/changelog
    COMMAND_ERROR_IS_FATAL ANY)
