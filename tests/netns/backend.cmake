corvane_test(NAME backend_test NETNS
    SOURCES
        netns/IpHelperTest.cpp
        netns/LinkControlTest.cpp
        netns/LinkSyncTest.cpp
        netns/NetnsSupport.cpp
    LIBS corvane_backend)
