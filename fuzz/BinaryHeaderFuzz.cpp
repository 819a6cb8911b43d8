/// Reads hostile header sections of binary files, see HeaderHarness.hpp.

#include "fuzz/HeaderHarness.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::tryHeader(Fuzz::Input(data, size), /*binary=*/true);
    return 0;
}
