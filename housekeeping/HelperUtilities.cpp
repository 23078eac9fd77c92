#include "housekeeping/HelperUtilities.h"

#include "base/Format.h"
#include "platform/Bundle.h"
#include "platform/ChildProcess.h"
#include "platform/Log.h"
#include "platform/TemporaryDirectory.h"
#include "platform/Workspace.h"

#include <optional>
#include <string_view>
#include <system_error>

namespace housekeeping {
namespace {

namespace fs = std::filesystem;
using platform::Bundle;

/// The value of a key in the configuration; the key itself when the table lacks it, which is also
/// what a program without a bundle gets.
std::string configured(std::string_view key) {
    const auto bundle = Bundle::mainBundle();
    return bundle ? bundle->localizedString(key, "", "Configuration") : std::string(key);
}

std::optional<fs::path> auxiliaryExecutable(std::string_view name) {
    const auto bundle = Bundle::mainBundle();
    return bundle ? bundle->pathForAuxiliaryExecutable(name) : std::nullopt;
}

bool isPresent(const fs::path& path) {
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

/// About what a copy of a file, or of a directory with everything in it, takes on the disk.
std::uintmax_t sizeOf(const fs::path& item) {
    constexpr std::uintmax_t kBlock = 4096;
    std::error_code error;
    const auto size = fs::file_size(item, error);
    std::uintmax_t total = kBlock + (error ? 0 : size);
    for (fs::recursive_directory_iterator entry(item, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code isNoFile;
        const auto entrySize = entry->file_size(isNoFile);
        total += kBlock + (isNoFile ? 0 : entrySize);
    }
    return total;
}

/// Copies a file, or a directory with everything in it, to a path where nothing may be. Links stay
/// links.
/// @return false, with nothing left at the target, when anything of it could not be copied.
bool copyItem(const fs::path& source, const fs::path& target) {
    if (isPresent(target)) {
        return false;
    }
    constexpr auto kOptions = fs::copy_options::recursive | fs::copy_options::copy_symlinks;
    try {
        // Not the overload with an error code: a directory that cannot be read to its end throws
        // from that one too.
        fs::copy(source, target, kOptions);
        return true;
    } catch (const fs::filesystem_error&) {
        std::error_code ignored;
        fs::remove_all(target, ignored);
        return false;
    }
}

} // namespace

std::string HelperUtilities::storeID() {
    return configured("storeid");
}

std::string HelperUtilities::uninstallerName() {
    return configured("Application Uninstaller");
}

bool HelperUtilities::trash(const fs::path& path) {
    return !platform::workspace::moveToTrash(path);
}

void HelperUtilities::clearQuarantineAttribute(const fs::path& path) {
    const std::string command = base::formatted(
        "/usr/bin/xattr -d com.apple.quarantine '%@' &> /dev/null", {path.native()});
    // Whether it started makes no difference to anyone: the mark is a nicety.
    static_cast<void>(platform::startChildProcess({"/bin/sh", "-c", command}));
}

bool HelperUtilities::launchUninstaller() {
    const std::string name = uninstallerName();
    if (name.empty()) {
        return true;
    }
    std::error_code error;
    const auto source = auxiliaryExecutable(name);
    if (!source || !fs::exists(*source, error)) {
        platform::log("Uninstaller is not found at path: %@",
                      {source ? base::FormatArgument(source->native()) : std::nullopt});
        return false;
    }
    clearQuarantineAttribute(*source);
    const auto directory = platform::userTemporaryDirectory(sizeOf(*source));
    if (!directory) {
        platform::log("There is no place from which a copy of the uninstaller can be started");
        return false;
    }
    const fs::path copy = *directory / name;
    fs::remove_all(copy, error);
    return copyItem(*source, copy) && !platform::workspace::openFile(copy);
}

} // namespace housekeeping
