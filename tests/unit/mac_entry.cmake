corvane_test(NAME mac_entry_test
    SOURCES
        unit/MacEntryMovesTest.cpp
        unit/MacEntryTest.cpp
        unit/MacEntryTypingTest.cpp
        unit/VendorEntryTest.cpp
        unit/VendorSearchTest.cpp
    LIBS corvane_fakes)
add_dependencies(mac_entry_test vendor_list)
