# nicx.exe and its installer under Wine. The Windows programs are those of scripts/build-windows.
if(NOT CORVANE_WINDOWS)
    set(CORVANE_WINDOWS ${CMAKE_SOURCE_DIR}/build-windows)
endif()

# corvane_wine_tests(NAME name FILE file): corvane_python_tests in a sandbox with a display.
function(corvane_wine_tests)
    cmake_parse_arguments(ARG "" "NAME;FILE" "" ${ARGN})
    corvane_python_tests(NAME ${ARG_NAME} FILE ${ARG_FILE} NETNS DESKTOP TIMEOUT 300)
    get_property(tests DIRECTORY PROPERTY TESTS)
    list(FILTER tests INCLUDE REGEX "^${ARG_NAME}\\.")
    set_property(TEST ${tests} APPEND PROPERTY ENVIRONMENT CORVANE_WINDOWS=${CORVANE_WINDOWS})
endfunction()

corvane_wine_tests(NAME wine_harness FILE ${CMAKE_CURRENT_LIST_DIR}/harness_test.py)
corvane_wine_tests(NAME wine_command_line FILE ${CMAKE_CURRENT_LIST_DIR}/command_line_test.py)
corvane_wine_tests(NAME wine_command_line_system FILE ${CMAKE_CURRENT_LIST_DIR}/command_line_system_test.py)
corvane_wine_tests(NAME wine_main_window FILE ${CMAKE_CURRENT_LIST_DIR}/main_window_test.py)
corvane_wine_tests(NAME wine_window_changes FILE ${CMAKE_CURRENT_LIST_DIR}/window_changes_test.py)
corvane_wine_tests(NAME wine_tray FILE ${CMAKE_CURRENT_LIST_DIR}/tray_test.py)
corvane_wine_tests(NAME wine_programs FILE ${CMAKE_CURRENT_LIST_DIR}/windows_programs_test.py)
corvane_wine_tests(NAME wine_packages FILE ${CMAKE_CURRENT_LIST_DIR}/packages_test.py)
corvane_wine_tests(NAME wine_installer FILE ${CMAKE_CURRENT_LIST_DIR}/installer_test.py)
