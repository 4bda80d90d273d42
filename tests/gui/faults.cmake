# Exceptions on their way to the real event loop, on a desktop of its own.
add_executable(event_loop_faults_test gui/EventLoopFaultsTest.cpp ${CMAKE_SOURCE_DIR}/programs/WindowApp.cpp)
target_link_libraries(event_loop_faults_test PRIVATE corvane_fakes corvane_ui corvane_backend GTest::gmock GTest::gtest)
set_target_properties(event_loop_faults_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_test(NAME gui_faults.event_loop COMMAND ${CMAKE_CURRENT_LIST_DIR}/../netns/sandbox ${CMAKE_CURRENT_LIST_DIR}/display
    $<TARGET_FILE:event_loop_faults_test>)
set_tests_properties(gui_faults.event_loop PROPERTIES TIMEOUT 180)
