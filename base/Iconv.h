#pragma once

#include "base/Handle.h"

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include <iconv.h>

namespace base {

/// One conversion between two character encodings, by their names in iconv. For one thread at a
/// time.
class Iconv {
  public:
    /// A conversion from `source` to `target`; not valid when either encoding is unknown.
    Iconv(const char* target, const char* source);

    /// Whether the system knows both encodings.
    [[nodiscard]] bool isValid() const { return handle_ != nullptr; }
    /// The bytes of `text` in the target encoding, or none when they are not whole, well-formed
    /// text of the source encoding, cannot be expressed in the target, or isValid() is false. Each
    /// call starts anew.
    [[nodiscard]] std::optional<std::string> convert(std::string_view text) const;

  private:
    Handle<std::remove_pointer_t<iconv_t>, iconv_close> handle_;
};

} // namespace base
