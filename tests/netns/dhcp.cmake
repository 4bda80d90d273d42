corvane_test(NAME dhcp_netns_test NETNS
    SOURCES
        netns/DhcpClientsTest.cpp
        netns/DhcpInstallTest.cpp
        netns/DhcpLifeTest.cpp
        netns/DhcpTest.cpp
        netns/DhcpTestSupport.cpp
        netns/NetnsSupport.cpp
    LIBS corvane_dhcp)
# StartDhcp looks for the supervisor beside the program that calls it.
add_dependencies(dhcp_netns_test nicx-dhcp)
add_custom_command(TARGET dhcp_netns_test POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E create_symlink $<TARGET_FILE:nicx-dhcp> $<TARGET_FILE_DIR:dhcp_netns_test>/nicx-dhcp)
