#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace base {

/// A text that is an absolute `http` or `https` URL with a host.
class URL {
  public:
    /// A URL of exactly this text, or none when RFC 3986 does not allow the text as one: an
    /// unescaped blank, control, quote, `<>\^`{|}` or non-ASCII byte, a percent sign without two
    /// hexadecimal digits, brackets outside the host, a second `#`, another scheme, no host, a port
    /// out of range. Nothing is escaped or normalised.
    [[nodiscard]] static std::optional<URL> make(std::string_view text);

    /// The text it was made of.
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    explicit URL(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

} // namespace base
