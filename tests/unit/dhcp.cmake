corvane_test(NAME dhcp_unit
    SOURCES
        ${CMAKE_CURRENT_LIST_DIR}/DhcpHookTest.cpp
        ${CMAKE_CURRENT_LIST_DIR}/DhcpLeaseTest.cpp
        ${CMAKE_CURRENT_LIST_DIR}/ResolvConfTest.cpp
    LIBS corvane_dhcp)
