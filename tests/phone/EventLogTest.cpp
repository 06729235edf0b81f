#include "tools/virtual_phone/log/EventLog.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string_view>

namespace orbelantine::phone {

TEST(EventLog, LinesBeginWithTheirTime) {
    std::ostringstream out;
    std::chrono::milliseconds now{0};
    EventLog log(&out, [&] { return now; });
    log.write(JsonObject().add("event", "open"));
    now = std::chrono::milliseconds(1500);
    log.write(JsonObject());
    EXPECT_EQ(out.str(), "{\"t_ms\":0,\"event\":\"open\"}\n{\"t_ms\":1500}\n");
}

TEST(JsonObject, EscapesWhatWouldEndTheTextOrTheLineAndReplacesWhatIsNotUtf8) {
    EXPECT_EQ(jsonText("a\"b\\c\nd\te\x01\x1f\x7f"), "\"a\\\"b\\\\c\\nd\\te\\u0001\\u001f\x7f\"");
    EXPECT_EQ(jsonText(std::string_view("\0", 1)), "\"\\u0000\"");
    EXPECT_EQ(jsonText("\u00e9\u20ac\U0001F600"), "\"\u00e9\u20ac\U0001F600\"");
    EXPECT_EQ(jsonText("a\xff"), "\"a\ufffd\"");
    EXPECT_EQ(jsonText("\xed\xa0\x80").find('\xed'), std::string::npos) << "half a surrogate pair";
    EXPECT_EQ(jsonText("\xe2\x82"), "\"\ufffd\"");
}

} // namespace orbelantine::phone
