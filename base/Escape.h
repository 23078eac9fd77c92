#pragma once

#include <string>
#include <string_view>

namespace base {

/// How escaped() writes a control character.
enum class EscapeForm {
    Bytes, ///< `\xNN` for each byte, for people
    JSON   ///< `\uNNNN`, for text that a JSON serializer wrote
};

/// Returns a text without characters that a terminal or a viewer could obey instead of showing
/// them: C0 and C1 controls, DEL, line and paragraph separators, and controls of the writing
/// direction. Bytes that are invalid UTF-8 are escaped as controls.
///
/// With EscapeForm::JSON the C0 controls stay, because the serializer has escaped those of its
/// texts, and the others lay out the document. The text must be valid UTF-8.
[[nodiscard]] std::string escaped(std::string_view text, EscapeForm form = EscapeForm::Bytes);

} // namespace base
