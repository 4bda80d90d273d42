add_executable(nicx-dhcp ${CMAKE_CURRENT_LIST_DIR}/NicxDhcp.cpp)
target_link_libraries(nicx-dhcp PRIVATE corvane_dhcp)
