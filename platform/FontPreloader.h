#pragma once

#include <thread>

namespace platform {

/// Reads the fonts' configuration on a thread of its own, while the main thread loads libraries.
/// Qt then finds the configuration in memory. Reading it takes about as long as a tenth of the
/// whole start. On macOS, which has no such configuration, the preloader does nothing.
///
/// The thread reads environment variables. Therefore the process must not change its environment
/// during the preloader's lifetime. Without fontconfig or without a thread, Qt reads the
/// configuration itself or reports the missing library.
class FontPreloader {
  public:
    /// Starts the thread.
    FontPreloader() noexcept;
    FontPreloader(const FontPreloader&) = delete;
    FontPreloader& operator=(const FontPreloader&) = delete;
    /// Waits for the thread.
    ~FontPreloader();

  private:
    std::thread thread_;
};

} // namespace platform
