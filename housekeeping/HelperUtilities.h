#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace housekeeping {

/// The helper's configuration and the steps with which it removes the product. The configuration is
/// the strings table "Configuration" of the main bundle, read anew at each call. No state; every
/// operation may be called from any thread.
class HelperUtilities {
  public:
    HelperUtilities() = delete;

    /// The store identifier: the value of "storeid" as it stands, possibly empty. A table without
    /// the key gives the key itself.
    [[nodiscard]] static std::string storeID();

    /// The name of the uninstaller among the bundle's auxiliary executables: the value of
    /// "Application Uninstaller", empty for none. A table without the key gives the key itself.
    [[nodiscard]] static std::string uninstallerName();

    /// Moves a file or bundle to the Trash.
    /// @return false, with the item where it was and nothing logged, when the platform refuses.
    [[nodiscard]] static bool trash(const std::filesystem::path& path);

    /// Starts to clear the download-quarantine mark of a file and returns at once; nobody looks at
    /// the outcome. The path stands between single quotes in a shell command exactly as it is, so
    /// one that holds a single quote is split and interpreted by the shell: only for paths that the
    /// company's own packaging makes.
    static void clearQuarantineAttribute(const std::filesystem::path& path);

    /// Starts the product's uninstaller: the auxiliary executable of the main bundle named under
    /// "Application Uninstaller". Its quarantine mark is cleared. It is copied into a directory of
    /// this helper among the user's temporary ones, in place of the copy of an earlier run, and the
    /// copy is opened. The copy stays.
    ///
    /// @return true when the copy was opened, or when the configured name is empty and there is
    /// nothing to do. False when there is no such executable or no place for the copy (one log line
    /// each), when it cannot be copied (what was copied is removed again), or when the copy cannot
    /// be opened.
    [[nodiscard]] static bool launchUninstaller();

    /// Returns the directory for the uninstaller's copy, or std::nullopt if no location qualifies.
    [[nodiscard]] static std::optional<std::filesystem::path> uninstallerCopyDirectory();
};

} // namespace housekeeping
