#include "core/common/log/LogPaths.h"

#include "core/common/log/Log.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

class FakeLogPathsApi final : public LogPathsApi {
  public:
    std::vector<std::wstring> commandLine() override { return arguments; }

    std::wstring expandEnvironment(const std::wstring& text) override { return L"x:" + text; }

    std::wstring localDataFolder() override { return localData; }

    std::wstring temporaryFolder() override { return L"T:\\temp"; }

    void createFolder(const std::wstring& folder) override { created.push_back(folder); }

    std::wstring modulePath() override { return module; }

    [[nodiscard]] wchar_t separator() const override { return L'\\'; }

    std::vector<std::wstring> arguments{L"host"};
    std::wstring localData = L"C:\\Local";
    std::wstring module = L"orbelantine.dll";
    std::vector<std::wstring> created;
};

TEST(LogFolder, CommandLineComesFirstAndIsExpanded) {
    FakeLogPathsApi api;
    api.arguments = {L"host", L"-L", L"%TEMP%"};
    EXPECT_EQ(resolveLogFolder(api, {L"W:\\wish", "", "", kLogInfo}), L"x:%TEMP%\\");
}

TEST(LogFolder, WishComesBeforeTheUsersData) {
    FakeLogPathsApi api;
    EXPECT_EQ(resolveLogFolder(api, {L"W:\\wish\\", "", "", kLogInfo}), L"W:\\wish\\");
    EXPECT_EQ(api.created, std::vector<std::wstring>{L"W:\\wish\\"});
}

TEST(LogFolder, UsersDataIsForLevelsAboveDebug) {
    FakeLogPathsApi api;
    for (const unsigned level : {kLogInfo, kLogOff})
        EXPECT_EQ(resolveLogFolder(api, {L"", "", "", level}), L"C:\\Local\\Kessa\\KessaBrevon\\");
    for (const unsigned level : {kLogTrace, kLogDebug})
        EXPECT_EQ(resolveLogFolder(api, {L"", "", "", level}), L"T:\\temp\\");
}

TEST(LogFolder, TemporaryFolderIsTheLastResort) {
    FakeLogPathsApi api;
    api.localData.clear();
    EXPECT_EQ(resolveLogFolder(api, {L"", "", "", kLogInfo}), L"T:\\temp\\");
    EXPECT_EQ(api.created, std::vector<std::wstring>{L"T:\\temp"});
}

TEST(LogFolderArgument, IsTheOneAfterDashOrSlashL) {
    for (const wchar_t* option : {L"-L", L"-l", L"/L", L"/l"})
        EXPECT_EQ(folderArgument({L"host", L"first", option, L"folder"}), L"folder");
    for (const wchar_t* other : {L"-Lx", L"--L", L"L", L"-", L"+L", L""})
        EXPECT_EQ(folderArgument({L"host", other, L"folder"}), L"");
}

TEST(LogFolderArgument, LoneOptionAtTheEndIsNone) {
    EXPECT_EQ(folderArgument({L"host", L"-L"}), L"");
    EXPECT_EQ(folderArgument({L"host", L"-L", L"-l", L"folder"}), L"-l");
    EXPECT_EQ(folderArgument({}), L"");
}

TEST(LogName, IsMadeOfPrefixStemAndSuffix) {
    FakeLogPathsApi api;
    EXPECT_EQ(resolveLogName(api, {L"", "", "", kLogInfo}), L"lumiport.orbelantine.log");
    EXPECT_EQ(resolveLogName(api, {L"", "a.", "\xC3\xA4", kLogInfo}),
              L"a.lumiport.orbelantine\u00e4.log");
}

} // namespace
} // namespace orbelantine
