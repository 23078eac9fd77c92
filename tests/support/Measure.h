#pragma once

#include <chrono>
#include <cstddef>
#include <ctime>

#include <sys/resource.h>

namespace test {

/// Sanitizers take memory, stack and time of their own, so that no limit on these can be checked.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kIsSanitized = true;
#else
inline constexpr bool kIsSanitized = false;
#endif

/// The most memory that this process has had so far, in bytes.
[[nodiscard]] inline std::size_t peakMemory() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

/// The processor time that this thread has taken so far.
[[nodiscard]] inline std::chrono::nanoseconds threadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace test
