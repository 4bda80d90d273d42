# The main window: gateways and DNS servers of real links, added, removed and put in order by real keys and clicks.
corvane_python_tests(NAME gui_gateways FILE ${CMAKE_CURRENT_LIST_DIR}/gateways_test.py NETNS DESKTOP)
corvane_python_tests(NAME gui_dns_servers FILE ${CMAKE_CURRENT_LIST_DIR}/dns_servers_test.py NETNS DESKTOP)
