corvane_test(NAME registry_contract_test
    SOURCES
        contract/RegistryContractTest.cpp
        contract/linux/RegistryWorlds.cpp
    LIBS corvane_fakes corvane_store)
