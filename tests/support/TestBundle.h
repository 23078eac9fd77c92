#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace test {

/// A real application bundle below the test home, with an executable of its own name.
class TestBundle {
  public:
    /// @param path the bundle's directory, with its `.app`.
    explicit TestBundle(std::filesystem::path path);

    /// Makes it the main bundle of this process.
    const TestBundle& asMainBundle() const;
    const TestBundle& withResource(const std::string& name, std::string_view content) const;
    /// A script among the auxiliary executables.
    const TestBundle& withScript(const std::string& name, std::string_view commands) const;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path executable(const std::string& name) const;

  private:
    std::filesystem::path path_;
};

} // namespace test
