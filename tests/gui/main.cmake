# The main window and what stands around it, each case on a desktop and with links of its own.
corvane_python_tests(NAME gui_startup FILE ${CMAKE_CURRENT_LIST_DIR}/startup_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_main FILE ${CMAKE_CURRENT_LIST_DIR}/main_window_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_layout FILE ${CMAKE_CURRENT_LIST_DIR}/layout_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_dhcp FILE ${CMAKE_CURRENT_LIST_DIR}/dhcp_commands_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_live FILE ${CMAKE_CURRENT_LIST_DIR}/live_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_report FILE ${CMAKE_CURRENT_LIST_DIR}/report_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_tray FILE ${CMAKE_CURRENT_LIST_DIR}/tray_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_help FILE ${CMAKE_CURRENT_LIST_DIR}/help_test.py NETNS DESKTOP)
