#pragma once

#include <filesystem>
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

/// Writes a file, with the directories around it.
void writeFile(const std::filesystem::path& path, std::string_view content,
               bool executable = false);
[[nodiscard]] std::string readFile(const std::filesystem::path& path);
/// Waits, for at most ten seconds, until the file is there; gives whether it is.
[[nodiscard]] bool appears(const std::filesystem::path& path);
/// Waits, for at most ten seconds, until the file has this content; gives what it has.
[[nodiscard]] std::string readFileThatGets(const std::filesystem::path& path,
                                           const std::string& content);

} // namespace test
