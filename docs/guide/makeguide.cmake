# Makes the user's guide: HTML pages, the pictures that they show, and the style sheet.
#
#   cmake -D CMARK_GFM=<program> -D "PAGES=<name> <name>..." -D SOURCE=<folder of the Markdown>
#         -D GUIDE=<folder to make> -P makeguide.cmake
#
# Pages are given without suffix, in the order of the chapters. It fails when a page links to what is
# not there.

cmake_minimum_required(VERSION 3.25)

function(refuse page text)
    message(FATAL_ERROR "docs/guide/${page}.md ${text}")
endfunction()

# Sets `result` to the first heading of a page.
function(read_title page result)
    if(NOT EXISTS ${SOURCE}/${page}.md)
        refuse(${page} "is in the list of pages and not in the folder.")
    endif()
    file(READ ${SOURCE}/${page}.md text)
    if(NOT text MATCHES "^# ([^\n]+)\n")
        refuse(${page} "does not begin with its title, a line \"# ...\".")
    endif()
    set(${result} "${CMAKE_MATCH_1}" PARENT_SCOPE)
endfunction()

# A page that is not in the list would be in no table of contents.
function(check_list)
    file(GLOB found RELATIVE ${SOURCE} ${SOURCE}/*.md)
    foreach(file IN LISTS found)
        string(REGEX REPLACE "\\.md$" "" page ${file})
        if(NOT page IN_LIST PAGES)
            refuse(${page} "is not in the list of pages, docs/guide/CMakeLists.txt.")
        endif()
    endforeach()
endfunction()

# Sets `result` to a dimension of a picture in pixels of its page, of which a pixel of the picture is
# half a one; `offset` is that of the dimension in a PNG file.
function(read_dimension picture offset result)
    file(READ ${picture} bytes OFFSET ${offset} LIMIT 4 HEX)
    math(EXPR dimension "0x${bytes} / 2")
    set(${result} ${dimension} PARENT_SCOPE)
endfunction()

# Copies the pictures of a page, and turns each into a figure of its natural size.
function(place_pictures page variable)
    set(html "${${variable}}")
    while(html MATCHES "<p><img src=\"([^\"]*)\" alt=\"([^\"]*)\" /></p>")
        set(paragraph "${CMAKE_MATCH_0}")
        set(source "${CMAKE_MATCH_1}")
        set(alternative "${CMAKE_MATCH_2}")
        if(NOT source MATCHES "^\\.\\./images/[^/]*@2x\\.png$")
            refuse(${page} "shows ${source}: pictures are called ../images/<name>@2x.png.")
        endif()
        if(NOT EXISTS ${SOURCE}/${source})
            refuse(${page} "shows a picture that does not exist: ${source}.")
        endif()
        if(alternative STREQUAL "")
            refuse(${page} "does not tell what is on the picture ${source}: ![...](...).")
        endif()
        read_dimension(${SOURCE}/${source} 16 width)
        read_dimension(${SOURCE}/${source} 20 height)
        get_filename_component(name ${source} NAME)
        file(COPY ${SOURCE}/${source} DESTINATION ${GUIDE}/images)
        string(REPLACE "${paragraph}" "<figure><a href=\"images/${name}\"><img src=\"images/${name}\" \
alt=\"${alternative}\" width=\"${width}\" height=\"${height}\"></a></figure>" html "${html}")
    endwhile()
    string(REGEX REPLACE "<figure><a href=[^>]*><img [^>]*>" "" rest "${html}")
    if(rest MATCHES "<img [^>]*>")
        refuse(${page} "shows a picture that is no paragraph of its own: ${CMAKE_MATCH_0}")
    endif()
    set(${variable} "${html}" PARENT_SCOPE)
endfunction()

# Leads links between pages to their HTML; every other link is a mistake.
function(place_links page variable)
    set(html "${${variable}}")
    set(rest "${html}")
    while(rest MATCHES "<a href=\"([^\"]*)\"")
        set(link "${CMAKE_MATCH_0}")
        set(target "${CMAKE_MATCH_1}")
        string(REPLACE "${link}" "" rest "${rest}")
        string(REGEX REPLACE "\\.md$" "" linked "${target}")
        if(linked STREQUAL target OR NOT linked IN_LIST PAGES)
            refuse(${page} "links to ${target}, which is no page of the guide.")
        endif()
        string(REPLACE "${link}" "<a href=\"${linked}.html\"" html "${html}")
    endwhile()
    set(${variable} "${html}" PARENT_SCOPE)
endfunction()

# Sets `result` to the HTML of a page without its frame.
function(make_content page result)
    execute_process(COMMAND ${CMARK_GFM} --extension table --to html ${SOURCE}/${page}.md
        OUTPUT_VARIABLE html COMMAND_ERROR_IS_FATAL ANY)
    if(html MATCHES "<!-- raw HTML omitted -->")
        refuse(${page} "holds HTML: write \\< for a sign that is none.")
    endif()
    place_links(${page} html)
    place_pictures(${page} html)
    string(REPLACE "<th>" "<th scope=\"col\">" html "${html}")
    string(REPLACE "<table>" "<div class=\"table\"><table>" html "${html}")
    string(REPLACE "</table>" "</table></div>" html "${html}")
    set(${result} "${html}" PARENT_SCOPE)
endfunction()

# Sets `result` to the items of the table of contents, in which `page` is the present one.
function(make_chapters page result)
    foreach(chapter IN LISTS PAGES)
        set(present "")
        if(chapter STREQUAL page)
            set(present " aria-current=\"page\"")
        endif()
        string(APPEND items
            "<li><a href=\"${chapter}.html\"${present}>${title_${chapter}}</a></li>\n")
    endforeach()
    set(${result} "${items}" PARENT_SCOPE)
endfunction()

# Sets `result` to a link to the page at a place of the list; empty beyond its ends.
function(make_neighbour place relation result)
    list(LENGTH PAGES count)
    set(${result} "" PARENT_SCOPE)
    if(place GREATER_EQUAL 0 AND place LESS count)
        list(GET PAGES ${place} page)
        set(${result} "<a rel=\"${relation}\" href=\"${page}.html\">${title_${page}}</a>" PARENT_SCOPE)
    endif()
endfunction()

function(make_page page)
    set(title "${title_${page}}")
    make_content(${page} content)
    make_chapters(${page} chapters)
    list(FIND PAGES ${page} place)
    math(EXPR before "${place} - 1")
    math(EXPR after "${place} + 1")
    make_neighbour(${before} prev previous)
    make_neighbour(${after} next next)
    configure_file(${SOURCE}/page.html.in ${GUIDE}/${page}.html @ONLY)
endfunction()

separate_arguments(PAGES UNIX_COMMAND "${PAGES}")
check_list()
foreach(page IN LISTS PAGES)
    read_title(${page} title_${page})
endforeach()

file(REMOVE_RECURSE ${GUIDE})
file(COPY ${SOURCE}/guide.css DESTINATION ${GUIDE})
set(backwards ${PAGES})
list(REVERSE backwards) # the first page is there only when all others are
foreach(page IN LISTS backwards)
    make_page(${page})
endforeach()
