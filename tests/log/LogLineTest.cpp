#include "LogTest.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace orbelantine {
namespace {

using LogLine = LogAtInfo;

class Speaker {
  public:
    static void speak(int number) { ORB_LOG(kLogInfo, "%s() number %d", number); }

    static void plain() { ORB_LOG(kLogInfo, "%s() plain"); }

    static void traced() { ORB_TRACED(); }
};

/// The text with "d" for each digit.
std::string shape(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; }, 'd');
    return text;
}

std::size_t tidLength(const std::string& text) {
    const std::size_t begin = text.find("tid:") + 4;
    return text.find(' ', begin) - begin;
}

TEST_F(LogLine, HasTimeThreadLoggerAndLevelAndEndsInCrLf) {
    set_log_level(kLogDebug);
    lumiport_log(kLogWarning, "Tag", "100% of %s");

    char start[64];
    std::snprintf(start, sizeof start, "STARTING INSTANCE pid=%06d, level = 1\r\n",
                  spdlog::details::os::pid());
    const std::string head = "[dd/dd/dd dd:dd:dd.ddd | tid:" + std::string(tidLength(text()), 'd');
    EXPECT_EQ(shape(text()), shape(head + " | logger | critical]: " + start + head +
                                   " | Tag | warning]: 100% of %s\r\n"));
    EXPECT_NE(text().find(start), std::string::npos);
}

TEST_F(LogLine, EveryLevelHasItsName) {
    set_log_level(kLogTrace);
    for (unsigned level = kLogTrace; level <= kLogOff; ++level)
        lumiport_log(level, "T", "x");
    lumiport_log(99, "T", "above");
    EXPECT_EQ(laterLines(),
              (Lines{"T | trace]: x", "T | debug]: x", "T | info]: x", "T | warning]: x",
                     "T | error]: x", "T | critical]: x", "T | off]: x", "T | off]: above"}));
}

TEST_F(LogLine, FormattedTextIsCutAtItsLimitAndPlainTextIsNot) {
    const std::string longText(5000, 'x');
    lumiport_log_fmt(kLogInfo, "T", "%s%d", longText.c_str(), 7);
    lumiport_log_fmt(kLogInfo, "T", "%d %s %.2f", -3, "text", 1.5);
    lumiport_log(kLogInfo, "", longText.c_str());
    EXPECT_EQ(laterLines(), (Lines{"T | info]: " + std::string(2047, 'x'),
                                   "T | info]: -3 text 1.50", " | info]: " + longText}));
}

TEST_F(LogLine, NativeCodesLinesBeginWithTheQualifiedFunction) {
    set_log_level(kLogDebug);
    Speaker::speak(5);
    Speaker::plain();
    Speaker::traced();
    const std::string name = "orbelantine::Speaker::";
    EXPECT_EQ(laterLines(), (Lines{"LUMIPORT | info]: " + name + "speak() number 5",
                                   "LUMIPORT | info]: " + name + "plain() plain",
                                   "LUMIPORT | debug]: Entering function " + name + "traced",
                                   "LUMIPORT | debug]: Leaving function " + name + "traced"}));
}

TEST_F(LogLine, PrivateEntriesAreRedactedAndTheirTagIsCut) {
    const std::string tag(120, 't');
    lumiport_log_private(kLogInfo, "T", "secret");
    lumiport_log_private_fmt(kLogInfo, "T", "%s() user %s", "f", "secret");
    lumiport_log_private_fmt(kLogInfo, "T", "user %s", "secret");
    lumiport_log_private_fmt(kLogInfo, "T", "%s(", "secret");
    lumiport_log_private(kLogInfo, tag.c_str(), "secret");
    lumiport_log(kLogInfo, tag.c_str(), "x");
    EXPECT_EQ(laterLines(), (Lines{"ALL__T | info]: [redacted]", "ALL__T | info]: f() [redacted]",
                                   "ALL__T | info]: [redacted]", "ALL__T | info]: [redacted]",
                                   "ALL__" + std::string(94, 't') + " | info]: [redacted]",
                                   tag + " | info]: x"}));
}

TEST_F(LogLine, NullTextIsTheEmptyText) {
    set_log_name_prefix(nullptr);
    lumiport_log(kLogInfo, nullptr, nullptr);
    lumiport_log_fmt(kLogInfo, "T", nullptr);
    lumiport_log_private(kLogInfo, nullptr, nullptr);
    lumiport_log_private_fmt(kLogInfo, "T", nullptr);
    set_log_enable_private(true);
    lumiport_log_private(kLogInfo, "T", nullptr);
    lumiport_log_private_fmt(kLogInfo, "T", nullptr);
    EXPECT_EQ(laterLines(), (Lines{" | info]: ", "T | info]: ", "ALL__ | info]: [redacted]",
                                   "ALL__T | info]: [redacted]",
                                   "logger | critical]: Changing log private from 0 to 1",
                                   "ALL__T | info]: ", "ALL__T | info]: "}));
}

TEST_F(LogLine, PrivateEntriesAreWholeOnceEnabled) {
    set_log_enable_private(true);
    EXPECT_TRUE(get_log_enable_private());
    lumiport_log_private(kLogInfo, "T", "100% secret");
    lumiport_log_private_fmt(kLogInfo, "T", "%s() user %s", "f", "secret");
    EXPECT_EQ(laterLines(),
              (Lines{"ALL__T | info]: 100% secret", "ALL__T | info]: f() user secret"}));
}

} // namespace
} // namespace orbelantine
