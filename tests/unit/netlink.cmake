corvane_test(NAME netlink_unit_test
    SOURCES
        unit/HardwareDatabaseTest.cpp
        unit/NetlinkMessages.cpp
        unit/NetlinkParseTest.cpp
        unit/NetlinkRestoreFilterTest.cpp
        unit/NetlinkSocketTest.cpp
    LIBS corvane_links)
