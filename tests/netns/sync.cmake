corvane_test(NAME link_sync_test NETNS
    SOURCES
        netns/LinkSyncTest.cpp
        netns/NetnsSupport.cpp
    LIBS corvane_backend)
