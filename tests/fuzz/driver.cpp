// Calls a fuzz target's fuzz() for libFuzzer, or as a plain test with each file of a directory. An
// abort, a sanitizer's report and an uncaught exception are faults.
#include "tests/support/TestHome.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string_view>

void fuzz(std::string_view input);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz({reinterpret_cast<const char*>(bytes), size});
    return 0;
}

#ifndef HELPER_FUZZER
int main(int /*argumentCount*/, char** arguments) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
        fuzz(test::readFile(entry.path()));
        ++count;
    }
    return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
#endif
