#include "tools/virtual_phone/picture/TextLines.h"

#include <algorithm>

namespace orbelantine::phone {

namespace {

/// The characters from begin up to end.
struct Range {
    std::size_t begin;
    std::size_t end;
};

/// Where a line that is too long ends: behind its last space, or where it is full.
std::size_t wrapAt(std::string_view text, std::size_t begin, std::size_t columns) {
    const std::size_t full = begin + columns;
    const std::size_t space = text.rfind(' ', full);
    return space == std::string_view::npos || space < begin ? full : space + 1;
}

std::vector<Range> breakLines(std::string_view text, std::size_t columns) {
    std::vector<Range> lines;
    for (std::size_t begin = 0;;) {
        const std::size_t lineEnd = std::min(text.find('\n', begin), text.size());
        const bool fits = lineEnd - begin <= columns;
        const std::size_t end = fits ? lineEnd : wrapAt(text, begin, columns);
        lines.push_back({begin, end});
        if (end == text.size())
            return lines;
        begin = fits ? end + 1 : end;
    }
}

TextLine toLine(std::string_view text, Range range) {
    TextLine line{std::string(text.substr(range.begin, range.end - range.begin)), std::nullopt};
    std::ranges::replace(line.text, '\t', ' ');
    return line;
}

} // namespace

std::vector<TextLine> visibleLines(std::string_view text, std::size_t caret, TextArea area) {
    const std::vector<Range> lines = breakLines(text, area.columns);
    const auto behindCaret = std::ranges::upper_bound(lines, caret, {}, &Range::begin);
    const auto caretLine = static_cast<std::size_t>(behindCaret - lines.begin()) - 1;
    const std::size_t first = caretLine < area.rows ? 0 : caretLine + 1 - area.rows;
    const std::size_t last = std::min(first + area.rows, lines.size());
    std::vector<TextLine> shown;
    for (std::size_t i = first; i < last; ++i)
        shown.push_back(toLine(text, lines[i]));
    shown[caretLine - first].caret = caret - lines[caretLine].begin;
    return shown;
}

} // namespace orbelantine::phone
