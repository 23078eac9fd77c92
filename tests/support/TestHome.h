#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace test {

/// A throw-away home of the test process with an own configuration, data (so an own Trash) and
/// temporary directory. It is one for the whole process, as the system's libraries read their
/// settings once; it is removed at exit.
class TestHome {
  public:
    TestHome();

    [[nodiscard]] static const std::filesystem::path& path();
    [[nodiscard]] static std::filesystem::path trashedFile(const std::string& name);
    [[nodiscard]] static std::string trashInfo(const std::string& name);
    /// The directory that the uninstaller's copy goes to.
    [[nodiscard]] static std::filesystem::path temporaryDirectory();
};

/// A real application bundle, made anew below the test home, with an executable of its own name.
class TestBundle {
  public:
    /// @param path the bundle's directory, with its `.app`.
    explicit TestBundle(std::filesystem::path path);

    /// Makes it, as it is now, the main bundle of this process. Before other threads run.
    void asMainBundle() const;
    void withResource(const std::string& name, std::string_view content) const;
    /// A script among the auxiliary executables.
    void withScript(const std::string& name, std::string_view commands) const;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path executable(const std::string& name) const;

  private:
    std::filesystem::path path_;
};

/// What the process's executable is taken to be: the bundle around it, if there is one, becomes the
/// main bundle.
void setExecutablePath(const std::filesystem::path& path);
/// The store service that requests go to, by the port of a fixture server on loopback.
void setStorePort(int port);

/// Writes a file, with the directories around it.
void writeFile(const std::filesystem::path& path, std::string_view content,
               bool executable = false);
[[nodiscard]] std::string readFile(const std::filesystem::path& path);
/// Waits, for at most ten seconds, until the condition holds; whether it does.
[[nodiscard]] bool becomesTrue(const std::function<bool()>& condition);
/// The same for a file that is to be there.
[[nodiscard]] bool appears(const std::filesystem::path& path);

} // namespace test
