corvane_test(NAME netlink_test NETNS
    SOURCES
        netns/EthtoolTest.cpp
        netns/LinkMonitorTest.cpp
        netns/NetlinkAddressTest.cpp
        netns/NetlinkLinkTest.cpp
        netns/NetlinkRestoreTest.cpp
        netns/NetlinkRouteTest.cpp
        netns/NetlinkScaleTest.cpp
        netns/NetnsSupport.cpp
    LIBS corvane_links)
