# What is built into the program: pictures, sound and database made at build time, and the list of
# built-in files.

find_program(NOX8_RSVG_CONVERT rsvg-convert DOC "Renders the SVG drawings of the program")
if(NOT NOX8_RSVG_CONVERT)
    message(FATAL_ERROR
        "The pictures of nox8 are rendered at build time by rsvg-convert, which was not found: "
        "install the Debian package librsvg2-bin.")
endif()

find_program(NOX8_SQLITE3 sqlite3 DOC "Makes the template of the database")
if(NOT NOX8_SQLITE3)
    message(FATAL_ERROR
        "The template of the database is made at build time by the sqlite3 client, which was not "
        "found: install the Debian package sqlite3.")
endif()

# nox8_make_database(<name>)
#
# Makes <name>.db in the current build directory from schema.sql of the current source directory.
function(nox8_make_database name)
    set(schema ${CMAKE_CURRENT_SOURCE_DIR}/schema.sql)
    set(database ${CMAKE_CURRENT_BINARY_DIR}/${name}.db)
    add_custom_command(
        OUTPUT ${database}
        COMMAND ${CMAKE_COMMAND} -E rm -f ${database}
        COMMAND ${NOX8_SQLITE3} -bail ${database} ".read '${schema}'"
        DEPENDS ${schema}
        COMMENT "Making ${name}.db"
        VERBATIM)
endfunction()

# nox8_make_sound(<name> SOURCES <file>...)
#
# Makes <name>.wav in the current build directory by a small program of its own, which is given the
# name of the file to write.
function(nox8_make_sound name)
    cmake_parse_arguments(arg "" "" "SOURCES" ${ARGN})
    set(maker make-${name}-sound)
    set(sound ${CMAKE_CURRENT_BINARY_DIR}/${name}.wav)
    nox8_add_program(${maker} SOURCES ${arg_SOURCES})
    set_target_properties(${maker} PROPERTIES
        AUTOMOC OFF AUTOUIC OFF RUNTIME_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
    add_custom_command(
        OUTPUT ${sound}
        COMMAND ${maker} ${sound}
        DEPENDS ${maker}
        COMMENT "Making ${name}.wav"
        VERBATIM)
endfunction()

# nox8_render(<drawing> <picture> <width> <height>)
#
# Renders an SVG file to a PNG file of the given size in pixels.
function(nox8_render drawing picture width height)
    cmake_path(GET picture PARENT_PATH folder)
    cmake_path(GET picture FILENAME name)
    file(MAKE_DIRECTORY ${folder})
    add_custom_command(
        OUTPUT ${picture}
        COMMAND ${NOX8_RSVG_CONVERT} --width ${width} --height ${height}
                --output ${picture} ${drawing}
        DEPENDS ${drawing}
        COMMENT "Rendering ${name}"
        VERBATIM)
endfunction()

# nox8_render_picture(<name> <width> <height>)
#
# Renders images/<name>.svg of the current source directory to images/<name>.png of the current
# build directory, at the given size in pixels, and to images/<name>@2x.png at twice that size.
function(nox8_render_picture name width height)
    set(drawing ${CMAKE_CURRENT_SOURCE_DIR}/images/${name}.svg)
    set(picture ${CMAKE_CURRENT_BINARY_DIR}/images/${name})
    math(EXPR doubleWidth "2 * ${width}")
    math(EXPR doubleHeight "2 * ${height}")
    nox8_render(${drawing} ${picture}.png ${width} ${height})
    nox8_render(${drawing} ${picture}@2x.png ${doubleWidth} ${doubleHeight})
endfunction()

# nox8_list_picture(<variable> <folder> <name>)
#
# Appends both sizes of a rendered picture to a list variable, as nox8_add_resources() takes them.
# The folder is the one in the program, such as /resource/images.
function(nox8_list_picture variable folder name)
    set(pairs ${${variable}})
    foreach(file ${name}.png ${name}@2x.png)
        list(APPEND pairs ${folder}/${file} ${CMAKE_CURRENT_BINARY_DIR}/images/${file})
    endforeach()
    set(${variable} ${pairs} PARENT_SCOPE)
endfunction()

# nox8_add_resources(<target> <path in the program> <file>...)
#
# An object library that carries the files, each named by its path in the program ("/resource/x" is
# opened as ":/resource/x"). The files may be outputs of custom commands of the same directory.
# An object library, because the linker would drop from a static one what nobody calls by name.
function(nox8_add_resources target)
    set(files "")
    set(lines "")
    set(pairs ${ARGN})
    while(pairs)
        list(POP_FRONT pairs path file)
        list(APPEND files ${file})
        string(APPEND lines "<file alias=\"${path}\">${file}</file>\n")
    endwhile()

    set(collection ${CMAKE_CURRENT_BINARY_DIR}/${target}.qrc)
    set(code ${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp)
    file(GENERATE OUTPUT ${collection}
        CONTENT "<RCC><qresource prefix=\"/\">\n${lines}</qresource></RCC>\n")
    # Format 1 stores no file times, so that equal sources give equal bytes.
    add_custom_command(
        OUTPUT ${code}
        COMMAND Qt5::rcc --format-version 1 --name ${target} --output ${code} ${collection}
        DEPENDS ${collection} ${files}
        COMMENT "Building in the files of ${target}"
        VERBATIM)
    add_library(${target} OBJECT ${code})
    set_target_properties(${target} PROPERTIES AUTOMOC OFF AUTOUIC OFF)
    target_link_libraries(${target} PRIVATE Qt5::Core)
endfunction()
