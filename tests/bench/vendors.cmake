# Not a test: run it by hand when the machine is quiet.
find_package(benchmark REQUIRED)
add_executable(bench_vendors bench/BenchVendors.cpp)
target_link_libraries(bench_vendors PRIVATE corvane_core benchmark::benchmark)
target_compile_definitions(bench_vendors PRIVATE CORVANE_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
set_target_properties(bench_vendors PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
add_dependencies(bench_vendors vendor_list)
