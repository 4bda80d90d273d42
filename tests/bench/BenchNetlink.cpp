#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "platform/linux/kernel/Netlink.h"

/// How long one look at the kernel's tables takes. Run inside a network namespace of its own
/// (tests/netns/sandbox): it makes up to 1000 veth pairs and removes them.
namespace {

using namespace corvane;

/// Runs `ip` with a file of commands.
bool RunBatch(const std::string& commands) {
    const std::string path = "/run/bench-netlink.batch";
    std::ofstream(path) << commands;
    const bool done = std::system(("ip -batch " + path).c_str()) == 0;
    std::remove(path.c_str());
    return done;
}

/// Veth pairs, each first end with an address and, being up, a connected route.
class Links {
 public:
    explicit Links(int pairs) {
        std::string commands;
        for (int i = 0; i < pairs; ++i) {
            const std::string name = "bench" + std::to_string(i);
            const std::string net = "10." + std::to_string(i / 250) + "." + std::to_string(i % 250);
            commands += "link add " + name + "a group 78 type veth peer name " + name + "b\n";
            commands += "addr add " + net + ".1/24 dev " + name + "a\n";
            commands += "link set " + name + "a up\n";
        }
        made_ = RunBatch(commands);
    }
    ~Links() { RunBatch("link del group 78\n"); }
    Links(const Links&) = delete;
    Links& operator=(const Links&) = delete;

    [[nodiscard]] bool Made() const { return made_; }

 private:
    bool made_ = false;
};

/// The range is the number of links; half of them have an address and a route.
template <class Row>
void BenchDump(benchmark::State& state, KernelAnswer (Netlink::*dump)(std::vector<Row>&)) {
    const Links links(static_cast<int>(state.range(0) / 2));
    if (!links.Made()) {
        state.SkipWithError("the links could not be made");
        return;
    }
    Netlink netlink;
    std::vector<Row> rows;
    for ([[maybe_unused]] auto iteration : state) {
        if (const KernelAnswer answer = (netlink.*dump)(rows); !answer.Ok()) {
            state.SkipWithError(answer.Words().c_str());
            return;
        }
    }
    state.counters["rows"] = static_cast<double>(rows.size());
}

BENCHMARK_CAPTURE(BenchDump, Links, &Netlink::DumpLinks)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BenchDump, Addresses, &Netlink::DumpAddresses)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BenchDump, Routes, &Netlink::DumpRoutes)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(2000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
