#include <cstddef>
#include <cstdint>

#include "tests/fuzz/Targets.h"

/// Compiled once for each fuzzer, with CORVANE_FUZZ_CHECK as the name of its function. libFuzzer puts the
/// bytes into memory of just their size, where AddressSanitizer sees a read past the end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    (void)corvane::fuzz::CORVANE_FUZZ_CHECK({reinterpret_cast<const char*>(data), size});
    return 0;
}
