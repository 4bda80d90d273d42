corvane_test(NAME mac_test
    SOURCES
        unit/NetworkFolderDialogTest.cpp
        unit/RestartConnectionTest.cpp
        unit/SetConnectionStateTest.cpp
        unit/WriteNetworkAddressTest.cpp
    LIBS corvane_fakes)
