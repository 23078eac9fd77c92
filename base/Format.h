#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace base {

/// One argument of a format: a text in UTF-8, or none.
using FormatArgument = std::optional<std::string_view>;

/// `format` with each "%@" replaced, in order, by one argument exactly as it stands. A missing
/// object, and a "%@" without an argument, becomes "(null)". Nothing else in the format is special,
/// and arguments are not searched for further "%@".
[[nodiscard]] std::string formatted(std::string_view format,
                                    std::initializer_list<FormatArgument> arguments);

} // namespace base
