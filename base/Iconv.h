#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <iconv.h>

namespace base {

/// Owns one conversion between two character encodings, by their names in iconv. Movable, for one
/// thread at a time.
class Iconv {
  public:
    /// A conversion from `source` to `target`; not valid when either encoding is unknown.
    Iconv(const char* target, const char* source);
    Iconv(Iconv&& other) noexcept;
    Iconv& operator=(Iconv&& other) noexcept;
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    ~Iconv();

    /// Whether the system knows both encodings.
    [[nodiscard]] bool isValid() const;
    /// The bytes of `text` in the target encoding, or none when they are not whole, well-formed
    /// text of the source encoding or cannot be expressed in the target. Each call starts anew.
    [[nodiscard]] std::optional<std::string> convert(std::string_view text) const;

  private:
    iconv_t handle_;
};

} // namespace base
