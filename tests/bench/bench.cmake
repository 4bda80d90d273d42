# Benchmarks are run by scripts/bench, not by the tests.
add_executable(bench_refresh EXCLUDE_FROM_ALL ${CMAKE_CURRENT_LIST_DIR}/bench_refresh.cpp)
target_link_libraries(bench_refresh PRIVATE corvane_backend)
set_target_properties(bench_refresh PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
