corvane_test(NAME tcpip_test
    SOURCES
        unit/DnsServersTest.cpp
        unit/RegistryGatewayTest.cpp
        unit/RegistryIpAddressTest.cpp
        unit/WriteTcpipSettingsTest.cpp
    LIBS corvane_fakes)
