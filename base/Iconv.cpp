#include "base/Iconv.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <utility>

namespace base {
namespace {

// iconv_open() reports failure by the pointer with all bits set.
// NOLINTNEXTLINE(performance-no-int-to-ptr)
const iconv_t kNone = reinterpret_cast<iconv_t>(std::intptr_t{-1});
constexpr auto kFailed = static_cast<std::size_t>(-1);

} // namespace

Iconv::Iconv(const char* target, const char* source) : handle_(iconv_open(target, source)) {}

Iconv::Iconv(Iconv&& other) noexcept : handle_(std::exchange(other.handle_, kNone)) {}

Iconv& Iconv::operator=(Iconv&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
}

Iconv::~Iconv() {
    if (isValid()) {
        iconv_close(handle_);
    }
}

bool Iconv::isValid() const {
    return handle_ != kNone;
}

std::optional<std::string> Iconv::convert(std::string_view text) const {
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    std::string result;
    // iconv takes a pointer to non-const by its old signature but never writes to the source.
    char* from = const_cast<char*>(text.data());
    std::size_t left = text.size();
    // Without a source it gives what it held back: a letter that a mark could have followed.
    for (char** const source : {&from, static_cast<char**>(nullptr)}) {
        std::size_t status = kFailed;
        do {
            std::array<char, 4096> buffer{};
            char* to = buffer.data();
            std::size_t space = buffer.size();
            status = iconv(handle_, source, &left, &to, &space);
            if (status == kFailed && errno != E2BIG) {
                return std::nullopt;
            }
            result.append(buffer.data(), buffer.size() - space);
        } while (status == kFailed);
    }
    return result;
}

} // namespace base
