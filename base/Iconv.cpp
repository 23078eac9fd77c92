#include "base/Iconv.h"

#include <array>
#include <cerrno>
#include <cstdint>

namespace base {
namespace {

constexpr auto kFailed = static_cast<std::size_t>(-1);

iconv_t openConversion(const char* target, const char* source) {
    const iconv_t handle = iconv_open(target, source);
    // iconv_open() returns a pointer with all bits set if it fails.
    return reinterpret_cast<std::intptr_t>(handle) == -1 ? nullptr : handle;
}

} // namespace

Iconv::Iconv(const char* target, const char* source) : handle_(openConversion(target, source)) {}

std::optional<std::string> Iconv::convert(std::string_view text) const {
    if (!isValid()) {
        return std::nullopt;
    }
    iconv(handle_.get(), nullptr, nullptr, nullptr, nullptr);
    std::string result;
    // iconv takes a pointer to non-const by its old signature but never writes to the source.
    char* from = const_cast<char*>(text.data());
    std::size_t left = text.size();
    // The second call, without a source, returns the held-back last letter, which could have been
    // followed by a combining mark.
    for (char** const source : {&from, static_cast<char**>(nullptr)}) {
        std::size_t status = kFailed;
        do {
            std::array<char, 4096> buffer{};
            char* to = buffer.data();
            std::size_t space = buffer.size();
            status = iconv(handle_.get(), source, &left, &to, &space);
            if (status == kFailed && errno != E2BIG) {
                return std::nullopt;
            }
            result.append(buffer.data(), buffer.size() - space);
        } while (status == kFailed);
    }
    return result;
}

} // namespace base
