// bench_refresh [RUNS]: milliseconds of one RefreshNicInfo over the real back-end, one line a run. The first
// line is the first refresh of the process, which also opens the store and brings it in step.

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "inventory/GetNicInfo.h"
#include "inventory/NicInfo.h"
#include "platform/Platform.h"

int main(int count, char** arguments) {
    const int runs = count > 1 ? std::atoi(arguments[1]) : 11;
    corvane::InstallPlatform(corvane::MakeSystemPlatform());
    for (int run = 0; run < runs; ++run) {
        const auto start = std::chrono::steady_clock::now();
        corvane::RefreshNicInfo();
        const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
        std::printf("%.3f\n", spent.count());
    }
    std::fprintf(stderr, "%zu adapters\n", corvane::Nics.size());
    return 0;
}
