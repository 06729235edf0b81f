#include "LogTest.h"
#include "core/common/log/LogFileSink.h"

#include <algorithm>
#include <chrono>

namespace orbelantine {
namespace {

using LogFile = LogAtInfo;

std::wstring withSeparator(const std::filesystem::path& folder) {
    return toWide(folder / "");
}

TEST_F(LogFile, NamesAreEmptyUntilTheFirstMessageAndTheDirectoryIsIgnored) {
    set_log_directory(L"elsewhere");
    EXPECT_EQ(get_log_directory(), L"");
    EXPECT_EQ(get_log_name(), L"");
    EXPECT_EQ(get_log_max_index(), 1U);
    lumiport_log(kLogInfo, "T", "x");
    EXPECT_EQ(get_log_directory(), withSeparator(mFolder));
    EXPECT_EQ(get_log_name(), L"lumiport.log_tests.log");
}

TEST_F(LogFile, PrefixAndSuffixSurroundTheName) {
    set_log_name_prefix("before.");
    set_log_name_suffix(".after");
    set_log_header("header");
    lumiport_log(kLogInfo, "T", "x");
    EXPECT_EQ(get_log_name(), L"before.lumiport.log_tests.after.log");
    EXPECT_TRUE(std::filesystem::exists(mFolder / "before.lumiport.log_tests.after.log"));
}

TEST_F(LogFile, FolderMayBeInAnyScript) {
    mFolder /= toPath(L"J\u00fcrgen \u65e5\u672c\U0001F600");
    set_log_folder(toWide(mFolder).c_str());
    lumiport_log(kLogInfo, "T", "x");
    EXPECT_EQ(get_log_directory(), withSeparator(mFolder));
    EXPECT_EQ(laterLines(), Lines{"T | info]: x"});
}

TEST_F(LogFile, LaterFolderIsToldButNotUsed) {
    lumiport_log(kLogInfo, "T", "first");
    set_log_folder(toWide(mFolder / "other").c_str());
    lumiport_log(kLogInfo, "U", "second");
    EXPECT_EQ(get_log_directory(), withSeparator(mFolder / "other"));
    EXPECT_EQ(laterLines(), (Lines{"T | info]: first", "U | info]: second"}));
}

TEST_F(LogFile, IsNotMadeWhenDisabledBefore) {
    set_disable_file_log(true);
    lumiport_log(kLogInfo, "T", "x");
    set_disable_file_log(false);
    lumiport_log(kLogInfo, "U", "x");
    EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(LogFile, StaysWhenDisabledAfterTheFirstMessage) {
    lumiport_log(kLogInfo, "T", "first");
    set_disable_file_log(true);
    lumiport_log(kLogInfo, "U", "second");
    EXPECT_EQ(laterLines(), (Lines{"T | info]: first", "U | info]: second"}));
}

TEST_F(LogFile, FolderThatIsAFileCostsTheFirstMessageAndTheFile) {
    std::filesystem::create_directories(mFolder.parent_path());
    std::ofstream(mFolder) << "a file";

    testing::internal::CaptureStderr();
    lumiport_log(kLogInfo, "T", "lost");
    EXPECT_EQ(spdlog::get("T"), nullptr);
    lumiport_log_fmt(kLogInfo, "T", "%s", "kept");
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::ranges::count(told, '\n'), 1);
    EXPECT_TRUE(told.starts_with("orbelantine: nothing is logged to a file: ")) << told;
    ASSERT_NE(spdlog::get("T"), nullptr);
    ASSERT_NE(spdlog::get("logger"), nullptr);
    EXPECT_TRUE(std::filesystem::is_regular_file(mFolder));
    for (const auto& sink : spdlog::get("T")->sinks())
        EXPECT_EQ(std::dynamic_pointer_cast<LogFileSink>(sink), nullptr);
}

TEST_F(LogFile, IsRotatedAtItsLimitWithOneFileKept) {
    constexpr std::size_t kLimit = 0x4000000;
    const std::string part(kLimit / 16, 'x');
    for (int i = 0; i < 33; ++i)
        lumiport_log(kLogInfo, "T", part.c_str());
    (void)text();
    EXPECT_LT(std::filesystem::file_size(file()), kLimit);
    const std::filesystem::path rotated = mFolder / "lumiport.log_tests.1.log";
    ASSERT_TRUE(std::filesystem::exists(rotated));
    EXPECT_GT(std::filesystem::file_size(rotated), kLimit - 2 * part.size());
    EXPECT_FALSE(std::filesystem::exists(mFolder / "lumiport.log_tests.2.log"));
    std::filesystem::remove(rotated);
}

TEST_F(LogFile, HoldsWarningsAtOnceAndOtherLinesWithOneASecondLater) {
    using namespace std::chrono_literals;
    std::filesystem::create_directories(mFolder);
    LogFileSink sink((mFolder / "lumiport.log_tests.log").native());
    sink.set_formatter(
        std::make_unique<spdlog::pattern_formatter>("%v", spdlog::pattern_time_type::local, " "));
    const spdlog::log_clock::time_point start{1000s};
    const auto log = [&](std::chrono::milliseconds when, spdlog::level::level_enum level,
                         const char* text) {
        sink.log({start + when, {}, "T", level, text});
    };

    log(0ms, spdlog::level::info, "a");
    log(900ms, spdlog::level::info, "b");
    EXPECT_EQ(onDisk(), "");
    log(1000ms, spdlog::level::info, "c");
    EXPECT_EQ(onDisk(), "a b c ");
    log(1999ms, spdlog::level::info, "d");
    log(2500ms, spdlog::level::info, "e");
    EXPECT_EQ(onDisk(), "a b c ");
    log(2500ms, spdlog::level::warn, "f");
    EXPECT_EQ(onDisk(), "a b c d e f ");
    log(2500ms, spdlog::level::info, "g");
    log(-5000ms, spdlog::level::info, "the clock was set back");
    EXPECT_EQ(onDisk(), "a b c d e f g the clock was set back ");
}

} // namespace
} // namespace orbelantine
