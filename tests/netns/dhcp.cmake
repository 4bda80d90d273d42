corvane_test(NAME dhcp_netns NETNS
    SOURCES
        ${CMAKE_CURRENT_LIST_DIR}/DhcpClientsTest.cpp
        ${CMAKE_CURRENT_LIST_DIR}/DhcpInstallTest.cpp
        ${CMAKE_CURRENT_LIST_DIR}/DhcpLifeTest.cpp
        ${CMAKE_CURRENT_LIST_DIR}/DhcpTest.cpp
        ${CMAKE_CURRENT_LIST_DIR}/DhcpTestSupport.cpp
        ${CMAKE_CURRENT_LIST_DIR}/NetnsSupport.cpp
    LIBS corvane_dhcp)
# StartDhcp looks for the supervisor beside the program that calls it.
add_dependencies(dhcp_netns nicx-dhcp)
add_custom_command(TARGET dhcp_netns POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E create_symlink $<TARGET_FILE:nicx-dhcp> $<TARGET_FILE_DIR:dhcp_netns>/nicx-dhcp)
