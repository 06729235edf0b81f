#include "core/common/log/LogPaths.h"

#include "core/common/log/Log.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace orbelantine {
namespace {

class FakeLogPathsApi final : public LogPathsApi {
  public:
    std::vector<std::wstring> commandLine() override { return arguments; }

    std::wstring expandEnvironment(const std::wstring& text) override { return L"x:" + text; }

    std::wstring localDataFolder() override { return localData; }

    std::wstring temporaryFolder() override { return L"T:\\temp"; }

    void createFolder(const std::wstring& folder) override { created.push_back(folder); }

    std::wstring modulePath() override { return L"orbelantine.dll"; }

    [[nodiscard]] wchar_t separator() const override { return L'\\'; }

    std::vector<std::wstring> arguments;
    std::wstring localData;
    std::vector<std::wstring> created;
};

TEST(LogFolder, IsTheArgumentsOrTheWishedOrAboveDebugTheUsersOrTheTemporaryOne) {
    const struct {
        std::wstring argument;
        std::wstring wish;
        unsigned level;
        std::wstring localData;
        std::wstring folder;
    } cases[] = {
        {L"%TEMP%", L"W:\\wish", kLogInfo, L"C:\\Local", L"x:%TEMP%\\"},
        {L"", L"W:\\wish\\", kLogInfo, L"C:\\Local", L"W:\\wish\\"},
        {L"", L"", kLogInfo, L"C:\\Local", L"C:\\Local\\Kessa\\KessaBrevon\\"},
        {L"", L"", kLogOff, L"C:\\Local\\", L"C:\\Local\\Kessa\\KessaBrevon\\"},
        {L"", L"", kLogTrace, L"C:\\Local", L"T:\\temp\\"},
        {L"", L"", kLogDebug, L"C:\\Local", L"T:\\temp\\"},
        {L"", L"", kLogInfo, L"", L"T:\\temp\\"},
    };

    for (const auto& [argument, wish, level, localData, folder] : cases) {
        FakeLogPathsApi api;
        api.arguments = {L"host", L"-L", argument};
        api.localData = localData;
        EXPECT_EQ(resolveLogFolder(api, {wish, "", "", level}), folder);
        ASSERT_EQ(api.created.size(), 1U);
        EXPECT_TRUE(folder.starts_with(api.created[0])) << "it is made";
    }
}

TEST(LogFolder, ArgumentIsTheOneAfterTheFirstDashOrSlashL) {
    for (const wchar_t* option : {L"-L", L"-l", L"/L", L"/l"})
        EXPECT_EQ(folderArgument({L"host", L"first", option, L"folder"}), L"folder");
    for (const wchar_t* other : {L"-Lx", L"--L", L"L", L"-", L"+L", L""})
        EXPECT_EQ(folderArgument({L"host", other, L"folder"}), L"");
    EXPECT_EQ(folderArgument({L"host", L"-L"}), L"");
    EXPECT_EQ(folderArgument({L"host", L"-L", L"-l", L"folder"}), L"-l");
    EXPECT_EQ(folderArgument({}), L"");
}

TEST(LogPathsApi, ExpansionBeyondTheLimitIsNone) {
    LogPathsApi& api = LogPathsApi::system();
    EXPECT_EQ(api.expandEnvironment(std::wstring(2047, L'x')).size(), 2047U);
    EXPECT_EQ(api.expandEnvironment(std::wstring(2048, L'x')), L"");
}

TEST(LogPathsApi, ProcessIsThisOne) {
    LogPathsApi& api = LogPathsApi::system();
    ASSERT_FALSE(api.commandLine().empty());
    EXPECT_NE(api.commandLine().front().find(L"core_tests"), std::wstring::npos);
    EXPECT_EQ(std::filesystem::path(api.modulePath()).stem(), "core_tests");
    EXPECT_EQ(api.separator(), wchar_t{std::filesystem::path::preferred_separator});
}

} // namespace
} // namespace orbelantine
