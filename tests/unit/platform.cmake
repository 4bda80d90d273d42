corvane_test(NAME platform_test
    SOURCES
        unit/AddressTest.cpp
        unit/IphlpApiTest.cpp
        unit/PlatformTest.cpp
        unit/RegErrorTextTest.cpp
        unit/RegistryOperationsTest.cpp
        unit/RegistryValuesTest.cpp
        unit/TextTest.cpp
    LIBS corvane_fakes)
