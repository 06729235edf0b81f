#include "tools/virtual_phone/log/EventLog.h"

#include <gtest/gtest.h>

#include <string_view>

namespace orbelantine::phone {

TEST(JsonObject, EscapesWhatWouldEndTheTextOrTheLineAndReplacesWhatIsNotUtf8) {
    EXPECT_EQ(jsonText("a\"b\\c\nd\te\x01\x1f\x7f"), "\"a\\\"b\\\\c\\nd\\te\\u0001\\u001f\x7f\"");
    EXPECT_EQ(jsonText(std::string_view("\0", 1)), "\"\\u0000\"");
    EXPECT_EQ(jsonText("\u00e9\u20ac\U0001F600"), "\"\u00e9\u20ac\U0001F600\"");
    EXPECT_EQ(jsonText("a\xff"), "\"a\ufffd\"");
    EXPECT_EQ(jsonText("\xed\xa0\x80").find('\xed'), std::string::npos) << "half a surrogate pair";
    EXPECT_EQ(jsonText("\xe2\x82"), "\"\ufffd\"");
}

} // namespace orbelantine::phone
