#include "LogTest.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <thread>

namespace orbelantine {
namespace {

using LogThreads = LogAtInfo;
using LogEnd = LogAtInfo;

constexpr const char* kStopping = "logger | critical]: STOPPING INSTANCE pid=";

struct LogsWhenDestroyed {
    const char* text;

    ~LogsWhenDestroyed() { lumiport_log(kLogInfo, "T", text); }
};

TEST_F(LogThreads, EveryLineOfEveryThreadArrives) {
    constexpr int kThreads = 4;
    constexpr int kLines = 200;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([i] {
            const std::string tag = "T" + std::to_string(i % 2);
            for (int line = 0; line < kLines; ++line)
                lumiport_log_fmt(kLogInfo, tag.c_str(), "line %d", line);
        });
    for (std::thread& thread : threads)
        thread.join();

    const Lines all = laterLines();
    EXPECT_EQ(all.size(), std::size_t{kThreads * kLines});
    EXPECT_EQ(std::count(all.begin(), all.end(), "T0 | info]: line 199"), kThreads / 2);
    EXPECT_EQ(std::count(all.begin(), all.end(), "T1 | info]: line 0"), kThreads / 2);
}

TEST_F(LogThreads, SettingsMayChangeUnderway) {
    std::atomic<bool> done{false};
    std::thread writer([&done] {
        for (int i = 0; !done; ++i)
            lumiport_log_private_fmt(kLogInfo, std::to_string(i % 50).c_str(), "%d", i);
    });
    for (int i = 0; i < 300; ++i) {
        set_log_level(i % 2 == 0 ? kLogInfo : kLogError);
        set_log_enable_private(i % 3 == 0);
        set_log_name_prefix(i % 2 == 0 ? "a" : "b");
        EXPECT_TRUE(get_log_name().empty() || get_log_name().ends_with(L".log"));
    }
    done = true;
    writer.join();
}

TEST_F(LogEnd, StoppingInstanceIsTheLastLineAndWhatComesAfterIsDropped) {
    EXPECT_EXIT(
        {
            static const LogsWhenDestroyed after{"after the end"};
            lumiport_log(kLogInfo, "T", "first");
            static const LogsWhenDestroyed before{"before the end"};
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
    const Lines all = laterLines();
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0], "T | info]: first");
    EXPECT_EQ(all[1], "T | info]: before the end");
    EXPECT_EQ(all[2].find(kStopping), 0U);
}

TEST_F(LogEnd, ThreadsMayLogWhileTheProcessEnds) {
    EXPECT_EXIT(
        {
            static std::atomic<int> written{0};
            for (int i = 0; i < 3; ++i)
                std::thread([] {
                    for (;; ++written)
                        lumiport_log(kLogInfo, std::to_string(written % 20).c_str(), "x");
                }).detach();
            while (written < 100)
                std::this_thread::yield();
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
    const Lines all = laterLines();
    ASSERT_FALSE(all.empty());
    EXPECT_EQ(all.back().find(kStopping), 0U);
}

} // namespace
} // namespace orbelantine
