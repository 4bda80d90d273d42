corvane_test(NAME backend_test NETNS
    SOURCES
        netns/IpHelperTest.cpp
        netns/LinkControlTest.cpp
        netns/LinkSyncTest.cpp
        netns/NameServersTest.cpp
        netns/NetnsSupport.cpp
        netns/RunTimeAddressTest.cpp
        unit/NetlinkMessages.cpp
    LIBS corvane_backend corvane_fakes)
