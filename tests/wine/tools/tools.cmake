# Windows programs of the tests under Wine: what they see windows, the registry and interfaces with.
set(tools ${CMAKE_CURRENT_LIST_DIR})
add_library(wine_json STATIC ${tools}/Json.cpp)

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
