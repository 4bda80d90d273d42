# The main window: IP addresses, typed into their boxes and given to real links.
corvane_python_tests(NAME gui_ip_entry FILE ${CMAKE_CURRENT_LIST_DIR}/ip_entry_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_ip_addresses FILE ${CMAKE_CURRENT_LIST_DIR}/ip_addresses_test.py NETNS DESKTOP)
