#include "platform/Workspace.h"

#include "base/URL.h"
#include "platform/Desktop.h"
#include "platform/Log.h"

#include <optional>
#include <string>

namespace platform::workspace {
namespace {

constexpr std::size_t kLongestAddress = 2048;

/// The URL of an address that the user may be shown. One with user information is made to be taken
/// for that of another host.
std::optional<base::URL> shownURL(std::string_view address) {
    const auto url = address.size() <= kLongestAddress ? base::URL::make(address) : std::nullopt;
    return url && !url->hasUserInformation() ? url : std::nullopt;
}

} // namespace

void prepareTrash() {
    desktop::prepareTrash();
}

std::error_code moveToTrash(const std::filesystem::path& path) {
    // A trailing slash does not make the last component empty.
    const std::filesystem::path item = path.has_filename() ? path : path.parent_path();
    // The last of these names would move something else than what the path seems to name.
    const auto name = item.filename();
    if (name.empty() || name == "." || name == "..") {
        return std::make_error_code(std::errc::invalid_argument);
    }
    return desktop::moveToTrash(item);
}

std::error_code checkTrash(const std::filesystem::path& path) {
    return desktop::checkTrash(path);
}

std::error_code openFile(const std::filesystem::path& file) {
    return desktop::openFile(file);
}

std::error_code openURL(std::string_view address) {
    const auto url = shownURL(address);
    if (!url) {
        log("Not opened, since it is no web address: %@", {address.substr(0, kLongestAddress)});
        return std::make_error_code(std::errc::invalid_argument);
    }
    const auto error = desktop::openAddress(url->text());
    if (error) {
        log("No browser could be started for %@: %@", {address, error.message()});
    }
    return error;
}

} // namespace platform::workspace
