#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace base {

/// One argument of a format: an optional text in UTF-8.
using FormatArgument = std::optional<std::string_view>;

/// Returns `format` with each "%@" replaced by the next argument, unchanged. An absent argument and
/// a "%@" without an argument become "(null)". Only "%@" in the format is special. A "%@" in an
/// argument stays.
[[nodiscard]] std::string formatted(std::string_view format,
                                    std::initializer_list<FormatArgument> arguments);

} // namespace base
