# Logic of the Windows back-end that needs no Windows.
corvane_test(NAME address_contexts_test
    SOURCES unit/AddressContextsTest.cpp ${CMAKE_SOURCE_DIR}/platform/windows/AddressContexts.cpp)
