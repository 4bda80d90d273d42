#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "support/Paths.h"
#include "ui/logic/VendorEntry.h"
#include "vendors/VendorList.h"

/// Times of the search in the vendor list that the build made. Bound: 5 ms for each keystroke, so that the
/// list follows the typing.
namespace corvane {
namespace {

void LoadList() {
    Vendors() = LoadVendorList(CORVANE_BIN_DIR "/");
    ShortVendorList = false;
}

/// A whole text at once, as when it is pasted: every entry is looked at.
void FindAnew(benchmark::State& state, const std::string& text) {
    LoadList();
    std::size_t matches = 0;
    for (auto _ : state) {
        VendorSearch search;
        search.Find(text);
        matches = search.Size();
        benchmark::DoNotOptimize(matches);
    }
    state.counters["matches"] = static_cast<double>(matches);
}
BENCHMARK_CAPTURE(FindAnew, SomeEntriesHaveTheLetter, "k")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FindAnew, FewEntriesHaveTheLetter, "q")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FindAnew, EveryEntryHasTheLetter, "a")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FindAnew, NoEntryHasTheWord, "qqqq")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FindAnew, ManyBeginnings, "ininin")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FindAnew, FourWords, "technology shenzhen co district")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FindAnew, Prefix, "00:0c:29")->Unit(benchmark::kMicrosecond);

/// The keystrokes of a word one after the other; the time is that of all of them.
void TypeWord(benchmark::State& state) {
    LoadList();
    const std::string word = "huawei technologies";
    for (auto _ : state) {
        VendorSearch search;
        for (std::size_t length = 1; length <= word.size(); ++length) search.Find(word.substr(0, length));
        benchmark::DoNotOptimize(search.Size());
    }
    state.counters["keys"] = static_cast<double>(word.size());
}
BENCHMARK(TypeWord)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace corvane

BENCHMARK_MAIN();
