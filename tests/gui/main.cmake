# The main window and what stands around it, each case on a desktop and with links of its own.
corvane_python_tests(NAME gui_startup FILE ${CMAKE_CURRENT_LIST_DIR}/startup_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_main FILE ${CMAKE_CURRENT_LIST_DIR}/main_window_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_layout FILE ${CMAKE_CURRENT_LIST_DIR}/layout_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_dhcp FILE ${CMAKE_CURRENT_LIST_DIR}/dhcp_commands_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_live FILE ${CMAKE_CURRENT_LIST_DIR}/live_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_report FILE ${CMAKE_CURRENT_LIST_DIR}/report_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_tray FILE ${CMAKE_CURRENT_LIST_DIR}/tray_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_help FILE ${CMAKE_CURRENT_LIST_DIR}/help_test.py NETNS DESKTOP)
# Every form of the program, made on a fake machine.
add_executable(control_names_test gui/ControlNamesTest.cpp)
target_link_libraries(control_names_test PRIVATE corvane_ui corvane_fakes GTest::gmock GTest::gtest_main)
set_target_properties(control_names_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_test(NAME gui_control_names
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/../netns/sandbox ${CMAKE_CURRENT_LIST_DIR}/display $<TARGET_FILE:control_names_test>)
set_tests_properties(gui_control_names PROPERTIES TIMEOUT 180)
