# Finds Qwt for Qt 5 and offers it as the target Qwt::Qwt.
#
# pkg-config is not asked: its file for Qwt drags in Qt's OpenGL package, which nothing here needs.

find_path(Qwt_INCLUDE_DIR qwt_global.h
    PATH_SUFFIXES qwt qwt-qt5 qt5/qwt qwt6-qt5 qwt6)
find_library(Qwt_LIBRARY NAMES qwt-qt5 qwt6-qt5 qwt)

if(Qwt_INCLUDE_DIR)
    file(STRINGS ${Qwt_INCLUDE_DIR}/qwt_global.h versionLine REGEX "define QWT_VERSION_STR ")
    string(REGEX REPLACE ".*\"([0-9.]+)\".*" "\\1" Qwt_VERSION "${versionLine}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Qwt
    REQUIRED_VARS Qwt_LIBRARY Qwt_INCLUDE_DIR
    VERSION_VAR Qwt_VERSION
    REASON_FAILURE_MESSAGE "nox8 needs Qwt 6.1.4 or later built for Qt 5 (Debian: libqwt-qt5-dev)")

if(Qwt_FOUND AND NOT TARGET Qwt::Qwt)
    add_library(Qwt::Qwt UNKNOWN IMPORTED)
    set_target_properties(Qwt::Qwt PROPERTIES
        IMPORTED_LOCATION ${Qwt_LIBRARY}
        INTERFACE_INCLUDE_DIRECTORIES ${Qwt_INCLUDE_DIR})
endif()
mark_as_advanced(Qwt_INCLUDE_DIR Qwt_LIBRARY)
