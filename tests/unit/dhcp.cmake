corvane_test(NAME dhcp_unit_test
    SOURCES
        unit/DhcpHookTest.cpp
        unit/DhcpLeaseTest.cpp
        unit/DhcpStateTest.cpp
        unit/ResolvConfTest.cpp
    LIBS corvane_dhcp)
