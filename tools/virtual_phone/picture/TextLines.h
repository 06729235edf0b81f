#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orbelantine::phone {

/// One line of a text field as it is drawn.
struct TextLine {
    std::string text;
    /// Set on the line with the caret: it stands before the character of this index, or at the end.
    std::optional<std::size_t> caret;

    bool operator==(const TextLine&) const = default;
};

struct TextArea {
    std::size_t columns = 1;
    std::size_t rows = 1;
};

/// Breaks the text into lines: at its own line ends, and where a line holds no more, behind a space
/// if there is one (that space may stand beyond the last column). Gives those in view: the first
/// rows, scrolled on only so far that the caret is seen. A tab shows as a space. `caret` is at most
/// the text's size.
[[nodiscard]] std::vector<TextLine> visibleLines(std::string_view text, std::size_t caret,
                                                 TextArea area);

} // namespace orbelantine::phone
