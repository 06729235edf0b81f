#include "tools/virtual_phone/picture/TextLines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orbelantine::phone {

namespace {

/// The lines with a '|' for the caret.
std::vector<std::string> shown(const std::string& text, std::size_t caret, TextArea area) {
    std::vector<std::string> lines;
    for (TextLine& line : visibleLines(text, caret, area)) {
        if (line.caret)
            line.text.insert(*line.caret, "|");
        lines.push_back(line.text);
    }
    return lines;
}

using Lines = std::vector<std::string>;

} // namespace

TEST(TextLines, LongLinesBreakBehindASpaceElseWhereTheyAreFull) {
    EXPECT_EQ(shown("", 0, {5, 2}), (Lines{"|"}));
    EXPECT_EQ(shown("ab cd efghijkl", 14, {5, 9}), (Lines{"ab cd ", "efghi", "jkl|"}));
    EXPECT_EQ(shown("a\tb\n\nc\n", 4, {5, 9}), (Lines{"a b", "|", "c", ""}));
    EXPECT_EQ(shown("abcdef", 3, {3, 9}), (Lines{"abc", "|def"}));
    EXPECT_EQ(shown("abc\ndef", 3, {3, 9}), (Lines{"abc|", "def"}));
}

TEST(TextLines, ViewScrollsOnlyAsFarAsTheCaretNeeds) {
    EXPECT_EQ(shown("a\nb\nc\nd", 0, {5, 2}), (Lines{"|a", "b"}));
    EXPECT_EQ(shown("a\nb\nc\nd", 4, {5, 2}), (Lines{"b", "|c"}));
    EXPECT_EQ(shown("a\nb\nc\nd", 7, {5, 2}), (Lines{"c", "d|"}));
}

} // namespace orbelantine::phone
