# Not a test: run it by hand inside tests/netns/sandbox.
find_package(benchmark REQUIRED)
add_executable(bench_netlink EXCLUDE_FROM_ALL bench/BenchNetlink.cpp)
target_link_libraries(bench_netlink PRIVATE corvane_netlink benchmark::benchmark)
