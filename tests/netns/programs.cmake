# The programs on real links, each case in a sandbox of its own.
corvane_python_tests(NAME netns_bad_input FILE ${CMAKE_CURRENT_LIST_DIR}/bad_input_test.py NETNS)
corvane_python_tests(NAME netns_dhcp FILE ${CMAKE_CURRENT_LIST_DIR}/dhcp_test.py NETNS)
corvane_python_tests(NAME netns_dns FILE ${CMAKE_CURRENT_LIST_DIR}/dns_test.py NETNS)
corvane_python_tests(NAME netns_install FILE ${CMAKE_CURRENT_LIST_DIR}/install_test.py NETNS)
corvane_python_tests(NAME netns_inventory FILE ${CMAKE_CURRENT_LIST_DIR}/inventory_test.py NETNS)
corvane_python_tests(NAME netns_mac_change FILE ${CMAKE_CURRENT_LIST_DIR}/mac_change_test.py NETNS)
corvane_python_tests(NAME netns_store FILE ${CMAKE_CURRENT_LIST_DIR}/store_test.py NETNS)
corvane_python_tests(NAME netns_tcpip FILE ${CMAKE_CURRENT_LIST_DIR}/tcpip_test.py NETNS)
