#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// An application bundle: a directory `<name>.app` with `Contents/Info.plist`, the executable
/// directory `Contents/Linux` (`Contents/MacOS` on macOS), which also holds the auxiliary
/// executables, `Contents/Frameworks`, `Contents/PlugIns` and `Contents/Resources`. A value;
/// nothing of the bundle's files is kept in memory, each look-up reads them anew. Safe to use from
/// any thread.
class Bundle {
  public:
    /// Returns the bundle in whose executable directory this process's executable lay at the first
    /// call or at the latest call of findMainBundle(), or std::nullopt if it lay elsewhere. Later
    /// changes of its files do not change the answer.
    [[nodiscard]] static std::optional<Bundle> mainBundle();

    /// Makes the bundle that contains this process's executable now the main bundle, because the
    /// user can move it while the program runs. Keeps the present one if the executable lies
    /// outside of a bundle, as after a deletion.
    static void findMainBundle();

    /// The bundle whose executable directory holds `executable`, an absolute path; none when the
    /// directories around it have other names or there is no Info.plist.
    [[nodiscard]] static std::optional<Bundle> around(const std::filesystem::path& executable);

    /// The program that an application bundle at `bundlePath` is launched by: the file named as the
    /// bundle, without `.app`, in its executable directory. It need not exist.
    [[nodiscard]] static std::filesystem::path
    executableOf(const std::filesystem::path& bundlePath);

    /// The bundle's directory, as an absolute path without a trailing slash.
    [[nodiscard]] const std::filesystem::path& bundlePath() const { return path_; }

    /// The directory of the shared libraries that the bundle brings along.
    [[nodiscard]] std::filesystem::path frameworksPath() const;

    /// The directory of the plugins that it brings along. It need not exist.
    [[nodiscard]] std::filesystem::path plugInsPath() const;

    /// The path of the entry `name` of the executable directory, or none when there is no such
    /// entry or `name` is not a plain file name.
    [[nodiscard]] std::optional<std::filesystem::path>
    pathForAuxiliaryExecutable(std::string_view name) const;

    /// The path of the resource file `fileName`: a copy directly in `Resources` first, then those
    /// in the `.lproj` directories of the user's languages (see userLanguages()), then the one of
    /// the development language, `en`. None when there is no copy.
    [[nodiscard]] std::optional<std::filesystem::path>
    pathForResource(std::string_view fileName) const;

    /// The text under `key` in the strings table `table` of the bundle, exactly as it stands there.
    /// When the table, or the key in it, is missing: `value`, or the key itself if `value` is
    /// empty.
    [[nodiscard]] std::string localizedString(std::string_view key, std::string_view value = "",
                                              std::string_view table = "Localizable") const;

  private:
    explicit Bundle(std::filesystem::path path) : path_(std::move(path)) {}

    std::filesystem::path path_;
};

/// Returns the absolute path of this process's executable, or an empty path if the system does not
/// tell it. On Linux it follows the file if that is moved.
[[nodiscard]] std::filesystem::path executablePath();

} // namespace platform
