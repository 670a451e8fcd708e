# How CPack makes the Debian package of what is installed. Build nox8_installed first.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nox8)
set(CPACK_PACKAGE_CONTACT "nox8 developers <nox8@tavrel.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://nox8.example/)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "program for NOX-8 multichannel precision thermometers")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"nox8 reads NOX-8 multichannel precision thermometers, each on a serial port
of its own, up to 254 at once. It finds them by itself, and shows what they
measure as they measure it: in tables, in large numbers, and on a plot over
time with moving averages. Results are recorded into CSV files, exported and
read back. Settings, calibration characteristics and references of the
instruments can be changed. The user interface is in Russian.

The simulator nox8-sim plays any model of the family on a pseudo-terminal.")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# plugins and translations of Qt, which no program is linked to
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt5sql5-sqlite, libqt5svg5, qttranslations5-l10n")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libqt5multimedia5-plugins, xdg-utils")

set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/debianise.cmake)
include(CPack)
