/// Reads hostile header sections of text files, see HeaderHarness.hpp.

#include "fuzz/HeaderHarness.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::tryHeader(Fuzz::Input(data, size), /*binary=*/false);
    return 0;
}
