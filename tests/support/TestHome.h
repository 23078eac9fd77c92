#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace test {

/// A temporary home of the test process, with its own configuration, data, Trash and temporary
/// directory. The whole process has one home, because the system's libraries read their settings
/// once. It is removed at exit.
class TestHome {
  public:
    TestHome();

    [[nodiscard]] static const std::filesystem::path& path();
    [[nodiscard]] static std::filesystem::path trashedFile(const std::string& name);
    /// Returns the directory for the uninstaller's copy.
    [[nodiscard]] static std::filesystem::path temporaryDirectory();
};

/// A new application bundle below the test home, with an executable of the bundle's name.
class TestBundle {
  public:
    /// @param path the bundle's directory, with its `.app`.
    explicit TestBundle(std::filesystem::path path);

    /// Makes the present state of the bundle the main bundle. Call it before other threads run.
    void asMainBundle() const;
    void withResource(const std::string& name, std::string_view content) const;
    /// Adds a script to the auxiliary executables.
    void withScript(const std::string& name, std::string_view commands) const;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path executable(const std::string& name) const;

  private:
    std::filesystem::path path_;
};

/// Sets the path that the process takes for its executable. A bundle around it becomes the main
/// bundle.
void setExecutablePath(const std::filesystem::path& path);
/// Sends requests to the fixture server on this loopback port.
void setStorePort(int port);

/// Writes a file, and creates the directories above it.
void writeFile(const std::filesystem::path& path, std::string_view content,
               bool executable = false);
[[nodiscard]] std::string readFile(const std::filesystem::path& path);
/// Returns a text many times, each with "@" replaced by its number, and "~" by the number before.
[[nodiscard]] std::string repeated(const std::string& text, std::size_t count,
                                   std::size_t number = 1);
/// Waits up to ten seconds until the condition holds. Returns whether it does.
[[nodiscard]] bool becomesTrue(const std::function<bool()>& condition);
/// Waits up to ten seconds until the file exists. Returns whether it does.
[[nodiscard]] bool appears(const std::filesystem::path& path);

} // namespace test
