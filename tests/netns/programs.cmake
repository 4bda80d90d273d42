# The programs on real links, each case in a sandbox of its own.
foreach(area bad_input dhcp dns inventory mac_change store tcpip)
    corvane_python_tests(NAME netns_${area} FILE ${CMAKE_CURRENT_LIST_DIR}/${area}_test.py NETNS)
endforeach()
