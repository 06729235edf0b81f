#include "core/common/errors/SystemText.h"
#include "core/common/log/LogPathsApi.h"
#include "core/common/run/ThreadName.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <string>
#include <thread>

namespace orbelantine {
namespace {

class LinuxLogPaths : public ::testing::Test {
  protected:
    void SetUp() override {
        ::setenv("HOME", "/home/user", 1);
        ::setenv("ORB_TEST", "va lue", 1);
        ::unsetenv("ORB_TEST_UNSET");
    }

    LogPathsApi& mApi = LogPathsApi::system();
};

TEST_F(LinuxLogPaths, VariablesAreExpandedAndWhatIsNoneStaysAsItStands) {
    EXPECT_EQ(mApi.expandEnvironment(L"/a/$ORB_TEST/${ORB_TEST}b"), L"/a/va lue/va lueb");
    for (const wchar_t* text : {L"/a/$ORB_TEST_UNSET/b", L"${ORB_TEST_UNSET}", L"${ORB_TEST", L"$",
                                L"$/x", L"${}", L"~", L"~/x", L""})
        EXPECT_EQ(mApi.expandEnvironment(text), text);
}

TEST_F(LinuxLogPaths, DataFolderFollowsTheDesktopsRulesAndTheTemporaryOneTheEnvironment) {
    ::setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(mApi.localDataFolder(), L"/data");
    ::setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(mApi.localDataFolder(), L"/home/user/.local/share");
    ::unsetenv("XDG_DATA_HOME");
    ::unsetenv("HOME");
    EXPECT_EQ(mApi.localDataFolder(), L"");
    const std::filesystem::path folder = std::filesystem::current_path();
    ::setenv("TMPDIR", folder.c_str(), 1);
    EXPECT_EQ(mApi.temporaryFolder(), folder.wstring());
    ::unsetenv("TMPDIR");
}

TEST(SystemText, SaysWhatTheWindowsNumberMeans) {
    EXPECT_EQ(systemErrorText(0), "Success");
    EXPECT_EQ(systemErrorText(31), "The device is there but does not work");
    EXPECT_EQ(systemErrorText(1225), "The phone refuses the connection");
    // 110 is a timeout of Linux alone.
    EXPECT_EQ(systemErrorText(110), "");
}

std::string shownName(int threadId) {
    std::string name;
    std::getline(std::ifstream("/proc/self/task/" + std::to_string(threadId) + "/comm"), name);
    return name;
}

TEST(ThreadName, BothFormsAreShownCutToFifteenCharacters) {
    std::promise<int> id;
    std::promise<void> done;
    std::thread worker([&] {
        setThreadName("BluetoothStateMachineThread");
        id.set_value(gettid());
        done.get_future().wait();
    });
    const int worksAs = id.get_future().get();
    EXPECT_EQ(shownName(worksAs), "BluetoothStateM");
    setThreadName("HidInputClientIoThread", worksAs);
    EXPECT_EQ(shownName(worksAs), "HidInputClientI");
    done.set_value();
    worker.join();
}

} // namespace
} // namespace orbelantine
