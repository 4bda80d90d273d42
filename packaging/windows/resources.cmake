# What Windows shows of nicx.exe: icon, version, manifest, and the toolkit's cursors and bitmaps.
# Sets CORVANE_WINDOWS_RESOURCES, the sources to add to the program's target. Include it after wxWidgets is found
# (wx::core). Needs rsvg-convert (Debian package librsvg2-bin) and icotool (icoutils).
foreach(tool IN ITEMS rsvg-convert:librsvg2-bin icotool:icoutils)
    string(REPLACE ":" ";" tool ${tool})
    list(GET tool 0 name)
    list(GET tool 1 package)
    string(MAKE_C_IDENTIFIER "CORVANE_${name}" variable)
    string(TOUPPER ${variable} variable)
    find_program(${variable} ${name} NO_CMAKE_FIND_ROOT_PATH)
    if(NOT ${variable})
        message(FATAL_ERROR "${name} is missing; it makes the icon of nicx.exe. Install the package ${package}.")
    endif()
endforeach()

set(resources ${CMAKE_CURRENT_BINARY_DIR}/resources)
set(drawing ${CMAKE_SOURCE_DIR}/ui/icons/app.svg)
set(icon ${resources}/nicx.ico)

# Each size that Windows asks for between 100 and 200 %; the largest stays a PNG, as Explorer expects it.
set(drawn)
set(commands)
foreach(size IN ITEMS 16 20 24 32 40 48 64 256)
    list(APPEND commands COMMAND ${CORVANE_RSVG_CONVERT} -w ${size} -h ${size} -o ${resources}/${size}.png ${drawing})
    if(size EQUAL 256)
        list(APPEND drawn --raw=${resources}/${size}.png)
    else()
        list(APPEND drawn ${resources}/${size}.png)
    endif()
endforeach()
add_custom_command(
    OUTPUT ${icon}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${resources}
    ${commands}
    COMMAND ${CORVANE_ICOTOOL} --create -o ${icon} ${drawn}
    DEPENDS ${drawing}
    COMMENT "Making the icon of nicx.exe"
    VERBATIM)

# A version of four numbers, as the version resource and the manifest want it.
string(REGEX MATCH "^[0-9]+\\.[0-9]+\\.[0-9]+\\.[0-9]+" CORVANE_VERSION_DOTS "${PROJECT_VERSION}.0.0.0")
string(REPLACE "." "," CORVANE_VERSION_COMMAS ${CORVANE_VERSION_DOTS})
file(STRINGS ${CMAKE_SOURCE_DIR}/LICENSE CORVANE_COPYRIGHT REGEX "^Copyright " LIMIT_COUNT 1)
if(NOT CORVANE_COPYRIGHT)
    message(FATAL_ERROR "LICENSE has no line that starts with \"Copyright\".")
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/LICENSE)
configure_file(${CMAKE_CURRENT_LIST_DIR}/nicx.rc.in ${resources}/nicx.rc @ONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/nicx.manifest.in ${resources}/nicx.manifest @ONLY)

set(CORVANE_WINDOWS_RESOURCES ${resources}/nicx.rc)
set_source_files_properties(${CORVANE_WINDOWS_RESOURCES} PROPERTIES
    OBJECT_DEPENDS "${icon};${resources}/nicx.manifest"
    INCLUDE_DIRECTORIES "$<TARGET_PROPERTY:wx::core,INTERFACE_INCLUDE_DIRECTORIES>"
    COMPILE_DEFINITIONS "wxUSE_NO_MANIFEST=1")
