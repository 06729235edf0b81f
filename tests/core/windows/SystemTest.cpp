#include "core/common/errors/SystemText.h"
#include "core/common/log/LogPathsApi.h"
#include "core/common/run/ThreadName.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

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

TEST_F(WindowsLogPaths, FoldersExistAndOneIsMadeWithThoseAboveIt) {
    EXPECT_TRUE(std::filesystem::is_directory(mApi.localDataFolder()));
    EXPECT_TRUE(std::filesystem::is_directory(mApi.temporaryFolder()));
    const std::filesystem::path top = std::filesystem::path(mApi.temporaryFolder()) /
                                      (L"orb_paths_" + std::to_wstring(::GetCurrentProcessId()));
    mApi.createFolder((top / L"\u00e4" / L"b").wstring());
    EXPECT_TRUE(std::filesystem::is_directory(top / L"\u00e4" / L"b"));
    std::filesystem::remove_all(top);
}

TEST(SystemText, KeepsItsLineEnd) {
    EXPECT_TRUE(systemErrorText(2).ends_with("\r\n"));
}

struct Naming {
    ULONG_PTR record, id, flags;
    std::string name;
    bool operator==(const Naming&) const = default;
};

std::vector<Naming> seen;

LONG CALLBACK watch(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == 0x406D1388 && record.NumberParameters == 4) {
        const auto& words = record.ExceptionInformation;
        seen.push_back({words[0], words[2], words[3], reinterpret_cast<const char*>(words[1])});
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST(ThreadName, ExceptionForTheDebuggerIsRaisedAndSwallowed) {
    void* const watcher = AddVectoredExceptionHandler(1, watch);
    setThreadName("AudioMixerIoThread");
    setThreadName("HidInputClientIoThread", static_cast<int>(GetCurrentThreadId()));
    RemoveVectoredExceptionHandler(watcher);
    const std::vector<Naming> expected = {
        {0x1000, 0xFFFFFFFF, 0, "AudioMixerIoThread"},
        {0x1000, GetCurrentThreadId(), 0, "HidInputClientIoThread"},
    };
    EXPECT_TRUE(seen == expected);
}

} // namespace
} // namespace orbelantine
