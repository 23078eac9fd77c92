#include "platform/UserDefaults.h"

#include "base/Handle.h"
#include "platform/LastError.h"
#include "platform/macos/AbsoluteTime.h"

#include <type_traits>

#include <CoreFoundation/CoreFoundation.h>
#include <pwd.h>
#include <unistd.h>

namespace platform {
namespace {

template <class Reference>
using Owned = base::Handle<std::remove_pointer_t<Reference>, CFRelease>;
using Text = Owned<CFStringRef>;

Text stringOf(std::string_view text) {
    return Text(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                        static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8,
                                        0));
}

Text domainOf(const std::filesystem::path& file) {
    return stringOf(file.stem().native());
}

/// Exchanges the changes of this process and of others with the system.
bool synchronize(const Text& domain) {
    return CFPreferencesSynchronize(domain.get(), kCFPreferencesCurrentUser,
                                    kCFPreferencesAnyHost) != 0;
}

Owned<CFPropertyListRef> valueIn(const std::filesystem::path& file, std::string_view key) {
    const Text domain = domainOf(file);
    synchronize(domain);
    return Owned<CFPropertyListRef>(CFPreferencesCopyValue(
        stringOf(key).get(), domain.get(), kCFPreferencesCurrentUser, kCFPreferencesAnyHost));
}

std::string bytesOf(const Text& text) {
    const CFRange all{0, CFStringGetLength(text.get())};
    CFIndex size = 0;
    CFStringGetBytes(text.get(), all, kCFStringEncodingUTF8, 0, 0, nullptr, 0, &size);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(text.get(), all, kCFStringEncodingUTF8, 0, 0,
                     reinterpret_cast<UInt8*>(bytes.data()), size, nullptr);
    return bytes;
}

} // namespace

// CoreFoundation, too, takes the home from the list of users, and not from HOME.
UserDefaults::UserDefaults(const std::string& domain) {
    if (const passwd* const user = ::getpwuid(::geteuid()); user != nullptr) {
        file_ = std::filesystem::path(user->pw_dir) / "Library/Preferences" / (domain + ".plist");
    }
}

std::optional<std::string> UserDefaults::text(std::string_view key, std::size_t /*limit*/,
                                              std::error_code& error) const {
    error.clear(); // CoreFoundation does not tell
    const auto value = valueIn(file_, key);
    const CFTypeID type = value ? CFGetTypeID(value.get()) : 0;
    if (!value || (type != CFStringGetTypeID() && type != CFNumberGetTypeID())) {
        return std::nullopt;
    }
    return bytesOf(Text(CFStringCreateWithFormat(nullptr, nullptr, CFSTR("%@"), value.get())));
}

std::optional<base::Timestamp> UserDefaults::date(std::string_view key) const {
    const auto value = valueIn(file_, key);
    if (!value || CFGetTypeID(value.get()) != CFDateGetTypeID()) {
        return std::nullopt;
    }
    return timestampOf(CFDateGetAbsoluteTime(static_cast<CFDateRef>(value.get())));
}

std::error_code UserDefaults::setDate(std::string_view key, base::Timestamp moment) const {
    const Owned<CFDateRef> date(CFDateCreate(nullptr, absoluteTime(moment)));
    const Text domain = domainOf(file_);
    CFPreferencesSetValue(stringOf(key).get(), date.get(), domain.get(), kCFPreferencesCurrentUser,
                          kCFPreferencesAnyHost);
    return synchronize(domain) ? std::error_code() : std::make_error_code(std::errc::io_error);
}

std::error_code UserDefaults::checkStoring() const {
    return ::access(file_.parent_path().c_str(), W_OK) == 0 ? std::error_code() : lastError();
}

FileLock UserDefaults::lock() const {
    return FileLock(std::filesystem::path(file_).replace_extension(".lock"));
}

} // namespace platform
