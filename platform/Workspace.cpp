#include "platform/Workspace.h"

#include "base/URL.h"
#include "platform/Desktop.h"
#include "platform/Log.h"

#include <optional>
#include <string>

namespace platform::workspace {
namespace {

constexpr std::size_t kLongestAddress = 2048;

/// Returns the URL of an address that may be opened. User information is rejected, because it can
/// imitate another host.
std::optional<base::URL> shownURL(std::string_view address) {
    const auto url = address.size() <= kLongestAddress ? base::URL::make(address) : std::nullopt;
    return url && !url->hasUserInformation() ? url : std::nullopt;
}

} // namespace

std::error_code moveToTrash(const std::filesystem::path& path) {
    // Ignore a trailing slash.
    const std::filesystem::path item = path.has_filename() ? path : path.parent_path();
    // Reject these names, because the moved item would differ from the one that the path shows.
    const auto name = item.filename();
    if (name.empty() || name == "." || name == "..") {
        return std::make_error_code(std::errc::invalid_argument);
    }
    return desktop::moveToTrash(item);
}

std::error_code openURL(std::string_view address) {
    const auto url = shownURL(address);
    if (!url) {
        log("Cannot open %@: not a web address", {address.substr(0, kLongestAddress)});
        return std::make_error_code(std::errc::invalid_argument);
    }
    const auto error = desktop::openAddress(url->text());
    if (error) {
        log("Cannot start a browser for %@: %@", {address, error.message()});
    }
    return error;
}

bool isOpenable(std::string_view address) {
    return shownURL(address).has_value();
}

} // namespace platform::workspace
