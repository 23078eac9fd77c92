#pragma once

#include <string>
#include <vector>

namespace platform {

/// Returns the user's languages for texts, the preferred one first, each followed by its parents.
/// The names are those of `.lproj` directories: "de_AT", "de", "zh_Hans".
[[nodiscard]] std::vector<std::string> userLanguages();

/// Returns the user's locales as the system names them, the preferred one first. Linux reads
/// `LANGUAGE` and the locale for messages, as gettext does. The result is empty if that locale is
/// "C" or "POSIX".
[[nodiscard]] std::vector<std::string> userLocales();

} // namespace platform
