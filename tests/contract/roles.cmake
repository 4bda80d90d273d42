corvane_test(NAME roles_contract NETNS
    SOURCES
        contract/HostContractTest.cpp
        contract/IpHelperContractTest.cpp
        contract/ShellContractTest.cpp
        contract/linux/IpHelperWorlds.cpp
        contract/linux/ShellWorlds.cpp
        netns/NetnsSupport.cpp
    LIBS corvane_backend corvane_fakes)
