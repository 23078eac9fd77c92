#include "platform/Workspace.h"

#include "base/URL.h"
#include "platform/Desktop.h"
#include "platform/Log.h"

#include <optional>
#include <string>

namespace platform::workspace {
namespace {

constexpr std::size_t kLongestAddress = 2048;

/// Whether something stands before the host, which is made to be taken for it.
bool hasUserInformation(std::string_view url) {
    url.remove_prefix(url.find("://") + 3);
    return url.substr(0, url.find_first_of("/?#")).find('@') != std::string_view::npos;
}

bool isShown(const std::optional<base::URL>& url) {
    return url && url->text().size() <= kLongestAddress && !hasUserInformation(url->text());
}

} // namespace

bool moveToTrash(const std::filesystem::path& path) {
    // A trailing slash does not make the last component empty.
    const std::filesystem::path item = path.has_filename() ? path : path.parent_path();
    // The last of these names would move something else than what the path seems to name.
    const auto name = item.filename();
    return !name.empty() && name != "." && name != ".." && desktop::moveToTrash(item);
}

bool openFile(const std::filesystem::path& file) {
    return desktop::openFile(file);
}

bool openURL(std::string_view address) {
    const auto url = base::URL::make(address);
    if (!isShown(url)) {
        log("Not opened, since it is no web address: %@", {address.substr(0, kLongestAddress)});
        return false;
    }
    if (!desktop::openAddress(url->text())) {
        log("No browser could be started for %@", {address});
        return false;
    }
    return true;
}

} // namespace platform::workspace
