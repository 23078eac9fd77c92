#include "platform/Bundle.h"

#include "platform/StringsTable.h"
#include "platform/UserLanguages.h"

#include <system_error>
#include <utility>

namespace platform {
namespace {

constexpr const char* kDevelopmentLanguage = "en";

std::filesystem::path executableDirectory(const std::filesystem::path& bundlePath) {
    return bundlePath / "Contents" / HELPER_EXECUTABLE_DIRECTORY;
}

bool isThere(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

} // namespace

std::optional<Bundle> Bundle::containing(const std::filesystem::path& executable) {
    const auto contents = executable.parent_path().parent_path();
    const auto path = contents.parent_path();
    if (!executable.is_absolute() || path.extension() != ".app" ||
        executable.parent_path() != executableDirectory(path) ||
        !isThere(contents / "Info.plist")) {
        return std::nullopt;
    }
    return Bundle(path);
}

std::filesystem::path Bundle::executableOf(const std::filesystem::path& bundlePath) {
    return executableDirectory(bundlePath) / bundlePath.stem();
}

std::filesystem::path Bundle::frameworksPath() const {
    return path_ / "Contents" / "Frameworks";
}

std::filesystem::path Bundle::plugInsPath() const {
    return path_ / "Contents" / "PlugIns";
}

std::optional<std::filesystem::path>
Bundle::pathForAuxiliaryExecutable(std::string_view name) const {
    // Reject slashes and dots, because the path and every copy of it would leave the directory.
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string_view::npos) {
        return std::nullopt;
    }
    auto path = executableDirectory(path_) / name;
    std::error_code error;
    if (!std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
        return std::nullopt;
    }
    return path;
}

std::optional<std::filesystem::path> Bundle::pathForResource(std::string_view fileName) const {
    const auto resources = path_ / "Contents" / "Resources";
    // Resources without a language are here, which saves the search through the user's languages.
    if (auto path = resources / fileName; isThere(path)) {
        return path;
    }
    auto languages = userLanguages();
    languages.emplace_back(kDevelopmentLanguage);
    for (const auto& language : languages) {
        if (auto path = resources / (language + ".lproj") / fileName; isThere(path)) {
            return path;
        }
    }
    return std::nullopt;
}

std::string Bundle::localizedString(std::string_view key, std::string_view value,
                                    std::string_view table) const {
    if (const auto path = pathForResource(std::string(table) + ".strings")) {
        const StringsTable strings = readStringsTable(*path);
        if (const auto entry = strings.find(key); entry != strings.end()) {
            return entry->second;
        }
    }
    return std::string(value.empty() ? key : value);
}

} // namespace platform
