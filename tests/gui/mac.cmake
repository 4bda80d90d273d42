# The main window: changing a MAC address on real links by real keys and clicks.
corvane_python_tests(NAME gui_bad_input FILE ${CMAKE_CURRENT_LIST_DIR}/bad_input_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_mac_change FILE ${CMAKE_CURRENT_LIST_DIR}/mac_change_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_mac_entry FILE ${CMAKE_CURRENT_LIST_DIR}/mac_entry_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_mac_vendors FILE ${CMAKE_CURRENT_LIST_DIR}/mac_vendors_test.py NETNS DESKTOP)
