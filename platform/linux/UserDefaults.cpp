#include "platform/UserDefaults.h"

#include "platform/File.h"

#include <cstdlib>
#include <filesystem>

#include <sys/stat.h>

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kOwnLimit = std::size_t{64} * 1024; // of a file that this program writes

/// Returns the directory that an environment variable names. By the XDG base directory rules, a
/// relative one counts as unset.
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
    // Ignore the result, because opening a file in the directory reports every failure.
    ::mkdir(directory.c_str(), 0700);
}

/// Calls `visit` with each line of `content`, including its line break.
template <class Visitor>
void forEachLine(std::string_view content, Visitor visit) {
    while (!content.empty()) {
        const auto end = content.find('\n');
        const auto length = end == std::string_view::npos ? content.size() : end + 1;
        visit(content.substr(0, length));
        content.remove_prefix(length);
    }
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto start = text.find_first_not_of(kBlanks);
    return start == std::string_view::npos
               ? std::string_view()
               : text.substr(start, text.find_last_not_of(kBlanks) + 1 - start);
}

/// Returns the value of a line that sets `key`.
std::optional<std::string_view> valueOf(std::string_view line, std::string_view key) {
    constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
    if (line.starts_with(kByteOrderMark)) { // of the first line
        line.remove_prefix(kByteOrderMark.size());
    }
    const auto equals = line.find('=');
    if (equals == std::string_view::npos || trimmed(line.substr(0, equals)) != key) {
        return std::nullopt;
    }
    return trimmed(line.substr(equals + 1));
}

bool isMissing(const std::error_code& error) {
    return error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory;
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

/// Reads the content that a write must keep, and makes the directory of a missing file.
/// @return why the file cannot be written, as far as that is known before.
std::error_code readForWriting(const fs::path& file, base::Data& content) {
    if (file.empty()) {
        return std::make_error_code(std::errc::no_such_file_or_directory);
    }
    makeDirectory(file.parent_path());
    std::error_code error;
    content = readRegularFile(file, kOwnLimit, error);
    // A broken link does not count as a missing file, because its target contains other values.
    std::error_code ignored;
    const bool isMissing = fs::symlink_status(file, ignored).type() == fs::file_type::not_found;
    return isMissing ? std::error_code() : error;
}

} // namespace

UserDefaults::UserDefaults(const std::string& domain) {
    if (const auto directory = configurationDirectory()) {
        file_ = *directory / (domain + ".conf");
    }
}

std::optional<std::string> UserDefaults::text(std::string_view key, std::size_t limit,
                                              std::error_code& error) const {
    const auto content = readRegularFile(file_, limit, error);
    if (isMissing(error)) {
        error.clear();
    }
    std::optional<std::string> text;
    forEachLine(content, [&](std::string_view line) {
        if (const auto value = valueOf(line, key); value && !text) {
            text.emplace(*value);
        }
    });
    return text;
}

std::optional<base::Timestamp> UserDefaults::date(std::string_view key) const {
    std::error_code ignored; // setDate() returns it
    const auto value = text(key, kOwnLimit, ignored);
    return value ? base::timestampFromText(*value) : std::nullopt;
}

std::error_code UserDefaults::setDate(std::string_view key, base::Timestamp moment) const {
    base::Data content;
    const auto error = readForWriting(file_, content);
    return error ? error
                 : replaceFile(file_, contentWith(content, key, base::timestampText(moment)));
}

std::error_code UserDefaults::checkStoring() const {
    base::Data content;
    const auto error = readForWriting(file_, content);
    // A full disk can still take an empty file.
    return error ? error : checkReplacement(file_, contentWith(content, "check", "a value"));
}

FileLock UserDefaults::lock() const {
    if (file_.empty()) {
        return FileLock({}); // its error is "no such file"
    }
    makeDirectory(file_.parent_path());
    return FileLock(fs::path(file_).replace_extension(".lock"));
}

} // namespace platform
