corvane_test(NAME address_editing_test
    SOURCES
        unit/DnsEditingTest.cpp
        unit/GatewayEditingTest.cpp
        unit/IpEditingTest.cpp
        unit/IpRemovalTest.cpp
        unit/PrefixAndMaskTest.cpp
    LIBS corvane_fakes)
