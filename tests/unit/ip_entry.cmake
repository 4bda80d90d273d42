corvane_test(NAME ip_entry_test
    SOURCES
        unit/IPAddressEntryMovesTest.cpp
        unit/IPAddressEntryTest.cpp
        unit/IPAddressEntryTypingTest.cpp)
