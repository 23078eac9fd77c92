// What libFuzzer calls.
#include "tests/fuzz/Fuzz.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz({reinterpret_cast<const char*>(bytes), size});
    return 0;
}
