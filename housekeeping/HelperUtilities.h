#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace housekeeping {

/// The helper's configuration and the steps of a removal. The configuration is the strings table
/// "Configuration" of the main bundle, read anew at each call. The class has no state. Every
/// operation may be called from any thread.
class HelperUtilities {
  public:
    HelperUtilities() = delete;

    /// Returns the store identifier: the unchanged value of "storeid", possibly empty, or the key
    /// itself if the table lacks it.
    [[nodiscard]] static std::string storeID();

    /// Returns the name of the uninstaller among the bundle's auxiliary executables: the value of
    /// "Application Uninstaller", or the key itself if the table lacks it. An empty value means
    /// that the product has no uninstaller.
    [[nodiscard]] static std::string uninstallerName();

    /// Returns the address of the page on which a customer can cancel: `customerURL`, or the value
    /// of "Account Page" if the store service sent an empty address or omitted it. Empty if the
    /// company has no such page, or if the table lacks the key.
    [[nodiscard]] static std::string accountPage(const std::optional<std::string>& customerURL);

    /// Moves a file or bundle to the Trash.
    /// @return true if the item was moved. On false the item keeps its location, and the log is
    /// unchanged.
    [[nodiscard]] static bool trash(const std::filesystem::path& path);

    /// Starts the command that clears a file's download-quarantine mark, and returns immediately.
    /// Its outcome is ignored. The command contains the path unchanged between single quotes, so a
    /// single quote in the path lets the shell interpret the rest. Pass only paths that the
    /// company's own packaging makes.
    static void clearQuarantineAttribute(const std::filesystem::path& path);

    /// Starts the product's uninstaller, the auxiliary executable of the main bundle named under
    /// "Application Uninstaller". Clears its quarantine mark, copies it into this helper's
    /// temporary directory in place of an earlier copy, and opens the copy. The copy stays.
    ///
    /// @return true if the copy was opened, or if the configured name is empty. False if the
    /// executable or a directory for the copy is missing (one log line each), if the copy failed (a
    /// partial copy is removed), or if the copy could not be opened.
    [[nodiscard]] static bool launchUninstaller();

    /// Returns the path that launchUninstaller() would copy the uninstaller to, or std::nullopt if
    /// no location qualifies or the uninstaller is missing. Copies and removes nothing.
    [[nodiscard]] static std::optional<std::filesystem::path> uninstallerCopyPath();
};

} // namespace housekeeping
