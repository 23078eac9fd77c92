#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// An application bundle: a directory `<name>.app` with `Contents/Info.plist`, the executable
/// directory `Contents/Linux` (`Contents/MacOS` on macOS), which also contains the auxiliary
/// executables, `Contents/Frameworks`, `Contents/PlugIns` and `Contents/Resources`. A value without
/// cached files: each lookup reads the disk. Use from any thread.
class Bundle {
  public:
    /// Returns the bundle that contained this process's executable at the first call, or at the
    /// latest call of findMainBundle(). Returns std::nullopt if the executable was outside a
    /// bundle. Later changes of the files do not change the result.
    [[nodiscard]] static std::optional<Bundle> mainBundle();

    /// Makes the bundle that now contains this process's executable the main bundle, because the
    /// user can move it while the program runs. Keeps the present one if the executable is outside
    /// a bundle, for example after a deletion.
    static void findMainBundle();

    /// Returns the bundle whose executable directory contains `executable`, an absolute path.
    /// Returns std::nullopt if the directories around it have other names or Info.plist is missing.
    [[nodiscard]] static std::optional<Bundle> containing(const std::filesystem::path& executable);

    /// Returns the program that starts the application bundle at `bundlePath`: the file in its
    /// executable directory with the bundle's name without `.app`. The file may be missing.
    [[nodiscard]] static std::filesystem::path
    executableOf(const std::filesystem::path& bundlePath);

    /// Returns the bundle's directory as an absolute path without a trailing slash.
    [[nodiscard]] const std::filesystem::path& bundlePath() const { return path_; }

    /// Returns the directory of the bundle's shared libraries.
    [[nodiscard]] std::filesystem::path frameworksPath() const;

    /// Returns the directory of the bundle's plugins. It may be missing.
    [[nodiscard]] std::filesystem::path plugInsPath() const;

    /// Returns the path of the entry `name` in the executable directory, or std::nullopt if the
    /// entry is missing or `name` is not a plain file name.
    [[nodiscard]] std::optional<std::filesystem::path>
    pathForAuxiliaryExecutable(std::string_view name) const;

    /// Returns the path of the resource file `fileName`. Searches `Resources` itself, then the
    /// `.lproj` directories of the user's languages (see userLanguages()), then that of the
    /// development language, `en`. Returns std::nullopt if every directory lacks the file.
    [[nodiscard]] std::optional<std::filesystem::path>
    pathForResource(std::string_view fileName) const;

    /// Returns the unchanged text for `key` in the bundle's strings table `table`. If the table or
    /// the key is missing, returns `value`, or the key itself if `value` is empty.
    [[nodiscard]] std::string localizedString(std::string_view key, std::string_view value = "",
                                              std::string_view table = "Localizable") const;

  private:
    explicit Bundle(std::filesystem::path path) : path_(std::move(path)) {}

    std::filesystem::path path_;
};

/// Returns the absolute path of this process's executable, or an empty path if the system does not
/// tell it. On Linux it follows the file if that is moved.
[[nodiscard]] std::filesystem::path executablePath();

/// Returns the name by which this process was started, without its directory.
[[nodiscard]] std::string programName();

} // namespace platform
