#include "core/common/log/LogPathsApi.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

namespace orbelantine {
namespace {

class WindowsLogPaths : public ::testing::Test {
  protected:
    LogPathsApi& mApi = LogPathsApi::system();
};

TEST_F(WindowsLogPaths, VariablesAreExpandedAndOthersStay) {
    ::SetEnvironmentVariableW(L"ORB_TEST", L"va lue");
    EXPECT_EQ(mApi.expandEnvironment(L"C:\\%ORB_TEST%\\%ORB_TEST_UNSET%"),
              L"C:\\va lue\\%ORB_TEST_UNSET%");
}

TEST_F(WindowsLogPaths, ExpansionBeyondTheLimitIsNone) {
    EXPECT_EQ(mApi.expandEnvironment(std::wstring(2047, L'x')).size(), 2047U);
    EXPECT_EQ(mApi.expandEnvironment(std::wstring(2048, L'x')), L"");
}

TEST_F(WindowsLogPaths, FoldersExist) {
    EXPECT_TRUE(std::filesystem::is_directory(mApi.localDataFolder()));
    EXPECT_TRUE(std::filesystem::is_directory(mApi.temporaryFolder()));
}

TEST_F(WindowsLogPaths, FolderIsMadeWithThoseAboveIt) {
    const std::filesystem::path top = std::filesystem::path(mApi.temporaryFolder()) /
                                      (L"orb_paths_" + std::to_wstring(::GetCurrentProcessId()));
    mApi.createFolder((top / L"\u00e4" / L"b").wstring());
    EXPECT_TRUE(std::filesystem::is_directory(top / L"\u00e4" / L"b"));
    std::filesystem::remove_all(top);
}

TEST_F(WindowsLogPaths, ProcessIsThisOne) {
    ASSERT_FALSE(mApi.commandLine().empty());
    EXPECT_NE(mApi.commandLine().front().find(L"core_tests"), std::wstring::npos);
    EXPECT_EQ(std::filesystem::path(mApi.modulePath()).stem(), L"core_tests");
    EXPECT_EQ(mApi.separator(), L'\\');
}

} // namespace
} // namespace orbelantine
