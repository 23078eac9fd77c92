#include "housekeeping/HelperUtilities.h"

#include "base/Format.h"
#include "Brand.h"
#include "platform/Bundle.h"
#include "platform/ChildProcess.h"
#include "platform/Desktop.h"
#include "platform/FileTree.h"
#include "platform/Log.h"
#include "platform/TemporaryDirectory.h"
#include "platform/Workspace.h"

#include <string_view>
#include <system_error>

namespace housekeeping {
namespace {

namespace fs = std::filesystem;
using platform::Bundle;

/// Returns the value of a key in the configuration, or the key itself if the table lacks it or the
/// program has no bundle.
std::string configured(std::string_view key) {
    const auto bundle = Bundle::mainBundle();
    return bundle ? bundle->localizedString(key, "", "Configuration") : std::string(key);
}

std::optional<fs::path> auxiliaryExecutable(std::string_view name) {
    const auto bundle = Bundle::mainBundle();
    return bundle ? bundle->pathForAuxiliaryExecutable(name) : std::nullopt;
}

} // namespace

std::string HelperUtilities::storeID() {
    return configured("storeid");
}

std::string HelperUtilities::uninstallerName() {
    return configured("Application Uninstaller");
}

std::string HelperUtilities::accountPage(const std::optional<std::string>& customerURL) {
    constexpr std::string_view kKey = "Account Page";
    if (customerURL && !customerURL->empty()) {
        return *customerURL;
    }
    const std::string page = configured(kKey);
    return page == kKey ? std::string() : page;
}

bool HelperUtilities::trash(const fs::path& path) {
    return !platform::workspace::moveToTrash(path);
}

void HelperUtilities::clearQuarantineAttribute(const fs::path& path) {
    const std::string command = base::formatted(
        "/usr/bin/xattr -d com.apple.quarantine '%@' &> /dev/null", {path.native()});
    // Ignored, because the uninstaller also starts with the mark.
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
    const auto copy =
        platform::replaceableTemporaryFile(HELPER_IDENTIFIER, name, platform::diskSize(*source));
    if (!copy) {
        platform::log(
            "Cannot copy the uninstaller %@: no directory allows execution and has enough "
            "space. Set TMPDIR to one that does",
            {source->native()});
        return false;
    }
    return !platform::copyTree(*source, *copy) && !platform::desktop::openFile(*copy);
}

std::optional<fs::path> HelperUtilities::uninstallerCopyPath() {
    const std::string name = uninstallerName();
    const auto source = auxiliaryExecutable(name);
    return source ? platform::checkedTemporaryFile(HELPER_IDENTIFIER, name,
                                                   platform::diskSize(*source))
                  : std::nullopt;
}

} // namespace housekeeping
