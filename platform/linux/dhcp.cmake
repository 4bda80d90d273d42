# DHCP supervision and the resolver's configuration.
add_library(corvane_dhcp STATIC
    ${CMAKE_CURRENT_LIST_DIR}/DhcpClientProcess.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DhcpClients.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DhcpControl.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DhcpHook.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DhcpInstall.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DhcpLease.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DhcpLinkWatch.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DhcpSocket.cpp
    ${CMAKE_CURRENT_LIST_DIR}/DhcpSupervisor.cpp
    ${CMAKE_CURRENT_LIST_DIR}/Dns.cpp)
target_link_libraries(corvane_dhcp PUBLIC corvane_core corvane_netlink corvane_store)
