#include "core/common/log/LogPathsApi.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

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

TEST_F(LinuxLogPaths, VariablesAreExpanded) {
    EXPECT_EQ(mApi.expandEnvironment(L"/a/$ORB_TEST/${ORB_TEST}b"), L"/a/va lue/va lueb");
}

TEST_F(LinuxLogPaths, WhatIsNoKnownVariableStaysAsItStands) {
    for (const wchar_t* text : {L"/a/$ORB_TEST_UNSET/b", L"${ORB_TEST_UNSET}", L"${ORB_TEST", L"$",
                                L"$/x", L"${}", L"~", L"~/x", L""})
        EXPECT_EQ(mApi.expandEnvironment(text), text);
}

TEST_F(LinuxLogPaths, ExpansionBeyondTheLimitIsNone) {
    EXPECT_EQ(mApi.expandEnvironment(std::wstring(2047, L'x')).size(), 2047U);
    EXPECT_EQ(mApi.expandEnvironment(std::wstring(2048, L'x')), L"");
}

TEST_F(LinuxLogPaths, DataFolderFollowsTheDesktopsRules) {
    ::setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(mApi.localDataFolder(), L"/data");
    ::setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(mApi.localDataFolder(), L"/home/user/.local/share");
    ::unsetenv("XDG_DATA_HOME");
    ::unsetenv("HOME");
    EXPECT_EQ(mApi.localDataFolder(), L"");
}

TEST_F(LinuxLogPaths, TemporaryFolderIsTheEnvironments) {
    const std::filesystem::path folder = std::filesystem::current_path();
    ::setenv("TMPDIR", folder.c_str(), 1);
    EXPECT_EQ(mApi.temporaryFolder(), folder.wstring());
    ::unsetenv("TMPDIR");
}

TEST_F(LinuxLogPaths, ProcessIsThisOne) {
    ASSERT_FALSE(mApi.commandLine().empty());
    EXPECT_NE(mApi.commandLine().front().find(L"core_tests"), std::wstring::npos);
    EXPECT_EQ(std::filesystem::path(mApi.modulePath()).stem(), "core_tests");
    EXPECT_EQ(mApi.separator(), L'/');
}

} // namespace
} // namespace orbelantine
