#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "platform/Files.h"
#include "support/Paths.h"
#include "vendors/VendorList.h"

/// Times of the vendor list that the build made. Bounds: 3 ms for loading 32000 records from a warm cache,
/// 100 ns for finding one.
namespace corvane {
namespace {

const char kFolder[] = CORVANE_BIN_DIR "/";

void LoadWarm(benchmark::State& state) {
    std::size_t records = 0;
    for (auto _ : state) {
        const VendorTable table = LoadVendorList(kFolder);
        records = table.Size();
        benchmark::DoNotOptimize(records);
    }
    state.counters["records"] = static_cast<double>(records);
}
BENCHMARK(LoadWarm)->Unit(benchmark::kMicrosecond);

void ReadOnly(benchmark::State& state) {
    for (auto _ : state) {
        std::string contents;
        if (ReadFileContents(std::string(kFolder) + kVendorFileName, contents))
            state.SkipWithError("unreadable");
        benchmark::DoNotOptimize(contents.data());
    }
}
BENCHMARK(ReadOnly)->Unit(benchmark::kMicrosecond);

/// Prefixes far apart in the table, so that the caches help as little as they do in the program.
std::vector<std::string> ScatteredPrefixes(const VendorTable& table) {
    std::vector<std::string> prefixes;
    constexpr std::size_t kStride = 7919;
    for (std::size_t i = 0; i < table.Size(); ++i)
        prefixes.emplace_back(table.Prefix(i * kStride % table.Size()));
    return prefixes;
}

void FindPresent(benchmark::State& state) {
    const VendorTable table = LoadVendorList(kFolder);
    const std::vector<std::string> prefixes = ScatteredPrefixes(table);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(table.FindVendor(prefixes[next]));
        if (++next == prefixes.size()) next = 0;
    }
}
BENCHMARK(FindPresent);

void FindAbsent(benchmark::State& state) {
    const VendorTable table = LoadVendorList(kFolder);
    std::vector<std::string> prefixes = ScatteredPrefixes(table);
    for (std::string& prefix : prefixes) prefix[0] = 'X';
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(table.FindVendor(prefixes[next]));
        if (++next == prefixes.size()) next = 0;
    }
}
BENCHMARK(FindAbsent);

void MakeText(benchmark::State& state) {
    const VendorTable table = LoadVendorList(kFolder);
    std::size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(VendorText(table, next));
        if (++next == table.Size()) next = 0;
    }
}
BENCHMARK(MakeText);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
