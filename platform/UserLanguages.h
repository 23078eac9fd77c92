#pragma once

#include <string>
#include <vector>

namespace platform {

/// The user's languages for texts, the preferred one first, each followed by its parents and
/// named as `.lproj` directories are: "de_AT", "de", "zh_Hans".
[[nodiscard]] std::vector<std::string> userLanguages();

/// The locales that they follow from, as the system names them. On Linux those of `LANGUAGE` and
/// the locale for messages, as gettext does; none when that locale is "C" or "POSIX".
[[nodiscard]] std::vector<std::string> userLocales();

} // namespace platform
