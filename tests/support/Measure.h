#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <string>

namespace test {

/// True under sanitizers, which need so much memory, stack and time that tests skip their limits.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif

/// Returns the peak resident memory of this process in bytes. getrusage() would include the
/// parent's peak.
[[nodiscard]] inline std::size_t peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (std::size_t kilobytes = 0; std::sscanf(line.c_str(), "VmHWM: %zu", &kilobytes) == 1) {
            return kilobytes * 1024;
        }
    }
    return 0;
}

/// Returns the processor time of this thread.
[[nodiscard]] inline std::chrono::nanoseconds threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace test
