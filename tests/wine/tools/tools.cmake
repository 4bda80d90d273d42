# Windows programs of the tests under Wine: what they see windows, the registry and interfaces with.
set(tools ${CMAKE_CURRENT_LIST_DIR})

# Of the host's headers the cross compiler may see only the JSON library, which has nothing but headers.
find_path(CORVANE_JSON_HEADERS nlohmann/json.hpp PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED
    DOC "The folder of nlohmann/json.hpp (Debian package nlohmann-json3-dev)")
set(json_headers ${CMAKE_BINARY_DIR}/tests/include)
file(MAKE_DIRECTORY ${json_headers})
file(CREATE_LINK ${CORVANE_JSON_HEADERS}/nlohmann ${json_headers}/nlohmann SYMBOLIC)

add_library(wine_json STATIC ${tools}/Json.cpp)
target_include_directories(wine_json SYSTEM PUBLIC ${json_headers})

add_executable(observer ${tools}/Observer.cpp ${tools}/ObserverWindows.cpp ${tools}/ObserverSystem.cpp)
target_link_libraries(observer PRIVATE wine_json iphlpapi)

add_library(probe MODULE ${tools}/ProbeLibrary.cpp ${tools}/ProbeWindows.cpp ${tools}/ProbeControls.cpp)
target_link_libraries(probe PRIVATE wine_json oleacc oleaut32 comctl32)

add_executable(sample WIN32 ${tools}/Sample.cpp)
target_link_libraries(sample PRIVATE comctl32)
target_link_options(sample PRIVATE -municode)

add_executable(taskbar ${tools}/Taskbar.cpp ${tools}/TaskbarIcons.cpp)
target_link_libraries(taskbar PRIVATE wine_json)

foreach(target observer probe sample taskbar)
    set_target_properties(${target} PROPERTIES PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests
        LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_link_options(${target} PRIVATE -static)
endforeach()
