# The kinds of target of this project: a library of the product, a test program, a plain program; and
# what is built to be installed.

add_library(nox8_flags INTERFACE)
target_compile_options(nox8_flags INTERFACE
    -Wall -Wextra -Wpedantic
    $<$<BOOL:${NOX8_WARNINGS_AS_ERRORS}>:-Werror>
    $<$<BOOL:${NOX8_FUZZ}>:-fsanitize=fuzzer-no-link,address,undefined
        -fno-sanitize-recover=undefined -fno-omit-frame-pointer>)
target_compile_definitions(nox8_flags INTERFACE
    QT_DEPRECATED_WARNINGS
    QT_NO_CAST_TO_ASCII
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_NO_FOREACH)
target_link_options(nox8_flags INTERFACE $<$<BOOL:${NOX8_FUZZ}>:-fsanitize=address,undefined>)
if(NOX8_SANITIZE)
    target_compile_options(nox8_flags INTERFACE
        -fsanitize=${NOX8_SANITIZE} -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(nox8_flags INTERFACE -fsanitize=${NOX8_SANITIZE})
endif()

# nox8_precompile(<name> HEADERS <header>... LINKS <target>...)
#
# Headers of Qt that are read once for all targets of one kind instead of once for each source. Few
# ones: what a source does not use costs it time as well.
function(nox8_precompile name)
    cmake_parse_arguments(arg "" "" "HEADERS;LINKS" ${ARGN})
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "// carries the precompiled headers of ${name}\n")
    add_library(${name} OBJECT ${source})
    set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF)
    target_link_libraries(${name} PRIVATE ${arg_LINKS} nox8_flags)
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()

set(widgetHeaders <QApplication> <QLabel> <QMenu> <QTableWidget> <QVariant>)
nox8_precompile(nox8_widget_headers HEADERS ${widgetHeaders} LINKS Qt5::Widgets)
nox8_precompile(nox8_test_headers HEADERS <QtTest> ${widgetHeaders} LINKS Qt5::Widgets Qt5::Test)

# Lets a target reuse the headers of widgets if it links Qt5::Widgets, itself or through others.
# Those that do not are left alone, so that a message box in them does not compile.
function(nox8_reuse_widget_headers target)
    foreach(link ${ARGN})
        set(reused FALSE)
        if(TARGET ${link})
            get_target_property(reused ${link} PRECOMPILE_HEADERS_REUSE_FROM)
        endif()
        if(reused OR link STREQUAL Qt5::Widgets OR link STREQUAL nox8lib)
            target_precompile_headers(${target} REUSE_FROM nox8_widget_headers)
            return()
        endif()
    endforeach()
endfunction()

# nox8_add_library(<name> SOURCES <file>... LINKS <target>...)
#
# A static library nox8_<name>. It links only the libraries it may know, so an include against the
# direction of the arrows does not link.
function(nox8_add_library name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    add_library(nox8_${name} STATIC ${arg_SOURCES})
    target_include_directories(nox8_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(nox8_${name} PUBLIC ${arg_LINKS} PRIVATE nox8_flags)
    nox8_reuse_widget_headers(nox8_${name} ${arg_LINKS})
endfunction()

# nox8_add_program(<name> SOURCES <file>... LINKS <target>...)
function(nox8_add_program name)
    cmake_parse_arguments(arg "" "" "SOURCES;LINKS" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LINKS} nox8_flags)
    nox8_reuse_widget_headers(${name} ${arg_LINKS})
endfunction()

# Builds all that is installed, and nothing else.
add_custom_target(nox8_installed)

# nox8_install_program(<name>)
#
# It finds all functions of its libraries when it starts; their table is read-only from then on.
function(nox8_install_program name)
    target_link_options(${name} PRIVATE LINKER:-z,relro,-z,now)
    add_dependencies(nox8_installed ${name})
    install(TARGETS ${name} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endfunction()

# Builds all test programs, and what they need.
add_custom_target(nox8_tests)

# Of the thread sanitizer: what libraries that it does not know do among themselves is not looked at.
set(NOX8_TEST_ENVIRONMENT
    QT_QPA_PLATFORM=offscreen
    LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0
    TSAN_OPTIONS=ignore_noninstrumented_modules=1)

# nox8_add_test(<name> SOURCES <file>... LINKS <target>... [LABEL unit|e2e])
#
# A test program of QtTest. Tests labelled "unit" (the default) run once more under the sanitizers.
function(nox8_add_test name)
    cmake_parse_arguments(arg "" "LABEL" "SOURCES;LINKS" ${ARGN})
    if(NOT arg_LABEL)
        set(arg_LABEL unit)
    endif()
    add_executable(${name} ${arg_SOURCES})
    if(NOX8_SANITIZE STREQUAL "thread")
        target_sources(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/qtevents.cpp)
    endif()
    target_link_libraries(${name} PRIVATE ${arg_LINKS} Qt5::Widgets Qt5::Test nox8_flags)
    target_precompile_headers(${name} REUSE_FROM nox8_test_headers)
    add_dependencies(nox8_tests ${name})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        LABELS ${arg_LABEL}
        ENVIRONMENT "${NOX8_TEST_ENVIRONMENT}")
endfunction()
