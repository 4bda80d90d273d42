corvane_test(NAME inventory_test
    SOURCES
        unit/AdapterRegistryTest.cpp
        unit/AdapterStatusTest.cpp
        unit/InterfaceIndexTest.cpp
        unit/LeaseTimesTest.cpp
        unit/RefreshTest.cpp
        unit/TcpipConfigTest.cpp
        unit/TimeZoneOffsetTest.cpp
    LIBS corvane_fakes)
