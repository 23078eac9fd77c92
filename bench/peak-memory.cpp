// Reads one subscription answer from a file and prints the answer's size and the process's peak
// resident memory, both in bytes.
#include "store/FastSpringSubscriptionParser.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

/// Returns the peak resident memory of this process in bytes. getrusage() would include the
/// parent's peak.
long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (long kilobytes = 0; std::sscanf(line.c_str(), "VmHWM: %ld", &kilobytes) == 1) {
            return kilobytes * 1024;
        }
    }
    return 0;
}

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        return 2;
    }
    std::string answer(static_cast<std::size_t>(std::filesystem::file_size(arguments[1])), '\0');
    std::ifstream(arguments[1], std::ios::binary)
        .read(answer.data(), static_cast<std::streamsize>(answer.size()));
    const auto record = store::FastSpringSubscriptionParser(answer).parseSubscription();
    std::printf("%zu %ld\n", answer.size(), peakMemory());
    return record ? 0 : 1;
}
