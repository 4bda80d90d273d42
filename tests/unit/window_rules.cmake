corvane_test(NAME window_rules_test
    SOURCES
        unit/ConnectionListTest.cpp
        unit/ConnectionRowsTest.cpp
        unit/DetailsTest.cpp
        unit/TrafficTest.cpp
        unit/TrayTest.cpp
    LIBS corvane_fakes)
