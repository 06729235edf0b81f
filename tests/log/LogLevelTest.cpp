#include "LogTest.h"

namespace orbelantine {
namespace {

using LogLevels = LogTest;

TEST_F(LogLevels, OffIsTheStartAndWritesNothingThoughTheFileIsMade) {
    EXPECT_EQ(get_log_level(), kLogOff);
    lumiport_log(kLogCritical, "T", "x");
    lumiport_log(kLogOff, "T", "x");
    lumiport_log_fmt(99, "T", "x");
    EXPECT_TRUE(std::filesystem::exists(file()));
    EXPECT_EQ(text(), "");
}

TEST_F(LogLevels, FirstLineOfNativeCodeMakesTheFileAndLaterFilteredOnesEvaluateNothing) {
    int evaluated = 0;
    ORB_LOG(kLogTrace, "%s() filtered %d", ++evaluated);
    EXPECT_EQ(get_log_directory(), toWide(mFolder / ""));
    EXPECT_TRUE(std::filesystem::exists(file()));
    set_log_level(kLogInfo);
    ORB_LOG(kLogDebug, "%s() filtered %d", ++evaluated);
    EXPECT_EQ(evaluated, 1);
    ORB_LOG_TEXT(kLogInfo, "written %d", ++evaluated);
    set_log_level(kLogWarning);
    ORB_LOG_TEXT(kLogInfo, "filtered %d", ++evaluated);
    EXPECT_EQ(evaluated, 2);
    EXPECT_EQ(text().find("LUMIPORT | info]: written 2\r\n", text().find("LUMIPORT")),
              text().find("LUMIPORT"));
}

TEST_F(LogLevels, ChangeReachesExistingLoggersAtTheirNextMessage) {
    set_log_level(kLogError);
    lumiport_log(kLogInfo, "T", "dropped");
    set_log_level(kLogInfo);
    lumiport_log(kLogInfo, "T", "written");
    set_log_level(kLogError);
    lumiport_log(kLogInfo, "T", "dropped");
    lumiport_log_fmt(kLogInfo, "T", "%s", "dropped");
    set_log_level(kLogOff); // Which isn't written, as turning on is.
    set_log_level(kLogCritical);
    EXPECT_EQ(laterLines(),
              (Lines{"logger | critical]: Changing log level from 4 to 2", "T | info]: written",
                     "logger | critical]: Changing log level from 2 to 4",
                     "logger | critical]: Changing log level from 6 to 5"}));
}

TEST_F(LogLevels, IsClampedToOff) {
    set_log_level(99);
    EXPECT_EQ(get_log_level(), kLogOff);
    set_log_level(kLogTrace);
    EXPECT_EQ(get_log_level(), kLogTrace);
}

TEST_F(LogLevels, OnlyAChangeIsReportedAndOnlyOnceTheServiceHasALogger) {
    set_log_level(kLogInfo);
    set_log_enable_private(true);
    lumiport_log(kLogInfo, "T", "first");
    set_log_level(kLogInfo);
    set_log_enable_private(true);
    set_log_enable_private(false);
    EXPECT_EQ(laterLines(),
              (Lines{"T | info]: first", "logger | critical]: Changing log private from 1 to 0"}));
}

} // namespace
} // namespace orbelantine
