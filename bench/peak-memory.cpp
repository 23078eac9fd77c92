// Reads one subscription answer from a file and prints the answer's size and the process's peak
// resident memory, both in bytes.
#include "store/FastSpringSubscriptionParser.h"
#include "tests/support/Measure.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        return 2;
    }
    std::string answer(static_cast<std::size_t>(std::filesystem::file_size(arguments[1])), '\0');
    std::ifstream(arguments[1], std::ios::binary)
        .read(answer.data(), static_cast<std::streamsize>(answer.size()));
    const auto record = store::FastSpringSubscriptionParser(answer).parseSubscription();
    std::printf("%zu %zu\n", answer.size(), test::peakMemory());
    return record ? 0 : 1;
}
