corvane_test(NAME store_test
    SOURCES
        unit/ErrorsTest.cpp
        unit/RegFileTest.cpp
        unit/RegistryStoreTest.cpp
        unit/RegistryStoreFilesTest.cpp
        unit/RegistryStoreProcessesTest.cpp
        unit/RegistryStoreRightsTest.cpp
    LIBS corvane_store)
corvane_test(NAME registry_tool_test
    SOURCES
        unit/RegistryToolFilesTest.cpp
        unit/RegistryToolTest.cpp
    LIBS corvane_registry_tool)
