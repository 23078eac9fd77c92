#pragma once

#include <chrono>
#include <cstddef>
#include <ctime>

#include <sys/resource.h>

namespace test {

/// True under sanitizers, which need so much memory, stack and time that tests skip their limits.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif

/// Returns the peak resident memory of this process in bytes.
[[nodiscard]] inline std::size_t peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

/// Returns the processor time of this thread.
[[nodiscard]] inline std::chrono::nanoseconds threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace test
