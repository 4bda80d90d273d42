corvane_test(NAME netlink_fuzz_test NETNS
    SOURCES
        fuzz/NetlinkFuzzTest.cpp
        netns/NetnsSupport.cpp
    LIBS corvane_netlink)
