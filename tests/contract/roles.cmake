corvane_test(NAME roles_contract NETNS
    SOURCES
        contract/IpHelperContractTest.cpp
        contract/ShellContractTest.cpp
        netns/NetnsSupport.cpp
    LIBS corvane_backend corvane_fakes)
