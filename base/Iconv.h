#pragma once

#include "base/Handle.h"

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include <iconv.h>

namespace base {

/// A conversion between two character encodings, by iconv's names. For one thread at a time.
class Iconv {
  public:
    /// Opens the conversion from `source` to `target`. Invalid if either encoding is unknown.
    Iconv(const char* target, const char* source);

    /// Returns true if the system knows both encodings.
    [[nodiscard]] bool isValid() const { return handle_ != nullptr; }
    /// Returns `text` in the target encoding. Each call converts independently.
    /// @return std::nullopt if the text is malformed or incomplete in the source encoding, if the
    /// target lacks a character, or if isValid() is false.
    [[nodiscard]] std::optional<std::string> convert(std::string_view text) const;

  private:
    Handle<std::remove_pointer_t<iconv_t>, iconv_close> handle_;
};

} // namespace base
