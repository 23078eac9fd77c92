#include "platform/UserDefaults.h"

#include "platform/File.h"

#include <cstdlib>
#include <filesystem>

#include <sys/stat.h>

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = std::size_t{64} * 1024;

/// The value of an environment variable that names a directory; relative ones count as unset, as
/// the XDG base directory rules say.
std::optional<fs::path> directoryFromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value != '/') {
        return std::nullopt;
    }
    return fs::path(value);
}

std::optional<fs::path> configurationDirectory() {
    if (auto configured = directoryFromEnvironment("XDG_CONFIG_HOME")) {
        return configured;
    }
    if (auto home = directoryFromEnvironment("HOME")) {
        return *home / ".config";
    }
    return std::nullopt;
}

void makeDirectory(const fs::path& directory) {
    std::error_code error;
    fs::create_directories(directory.parent_path(), error);
    // Whether it was there already, or cannot be made, shows when a file in it is opened.
    ::mkdir(directory.c_str(), 0700);
}

/// Calls `visit` with each line of `content`, its end of line included.
template <class Visitor>
void forEachLine(std::string_view content, Visitor visit) {
    while (!content.empty()) {
        const auto end = content.find('\n');
        const auto length = end == std::string_view::npos ? content.size() : end + 1;
        visit(content.substr(0, length));
        content.remove_prefix(length);
    }
}

/// The value of a line that sets `key`.
std::optional<std::string_view> valueOf(std::string_view line, std::string_view key) {
    if (!line.starts_with(key) || line.substr(key.size()).substr(0, 1) != "=") {
        return std::nullopt;
    }
    line.remove_prefix(key.size() + 1);
    return line.substr(0, line.find_first_of("\r\n"));
}

std::string contentWith(std::string_view content, std::string_view key, std::string_view value) {
    const std::string entry = std::string(key) + "=" + std::string(value) + "\n";
    std::string result;
    bool placed = false;
    forEachLine(content, [&](std::string_view line) {
        const bool replaced = !placed && valueOf(line, key);
        placed = placed || replaced;
        result.append(replaced ? entry : line);
    });
    if (!placed) {
        if (!result.empty() && result.back() != '\n') {
            result.push_back('\n');
        }
        result.append(entry);
    }
    return result;
}

} // namespace

UserDefaults::UserDefaults(const std::string& domain) {
    if (const auto directory = configurationDirectory()) {
        file_ = *directory / (domain + ".conf");
    }
}

std::optional<std::string> UserDefaults::text(std::string_view key) const {
    std::error_code ignored; // what cannot be read holds no values
    const auto content = readRegularFile(file_, kLargestFile, ignored);
    std::optional<std::string> text;
    forEachLine(content, [&](std::string_view line) {
        if (const auto value = valueOf(line, key); value && !text) {
            text.emplace(*value);
        }
    });
    return text;
}

std::optional<base::Timestamp> UserDefaults::date(std::string_view key) const {
    const auto value = text(key);
    return value ? base::timestampFromText(*value) : std::nullopt;
}

std::error_code UserDefaults::setDate(std::string_view key, base::Timestamp moment) const {
    if (file_.empty()) {
        return std::make_error_code(std::errc::no_such_file_or_directory);
    }
    makeDirectory(file_.parent_path());
    std::error_code error;
    const auto content = readRegularFile(file_, kLargestFile, error);
    std::error_code ignored;
    // A link that leads nowhere is no missing file: what it should lead to holds other values.
    if (error && fs::symlink_status(file_, ignored).type() != fs::file_type::not_found) {
        return error;
    }
    return replaceFile(file_, contentWith(content, key, base::timestampText(moment)));
}

FileLock UserDefaults::lock() const {
    if (file_.empty()) {
        return FileLock({}); // which says that there is no such file
    }
    makeDirectory(file_.parent_path());
    return FileLock(fs::path(file_).replace_extension(".lock"));
}

} // namespace platform
