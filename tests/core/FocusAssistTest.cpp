#include "core/common/FocusAssist.h"

#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace orbelantine {
namespace {

std::int32_t answeredStatus = 0;
int answeredProfile = 0;

std::int32_t answer(const std::uint64_t* stateName, const void*, const void*, std::uint32_t*,
                    void* buffer, std::uint32_t* size) {
    EXPECT_EQ(*stateName, 0x0d83063ea3bf1c75U);
    EXPECT_EQ(*size, 4U);
    std::memcpy(buffer, &answeredProfile, 4);
    return answeredStatus;
}

class FakeFocusAssistApi final : public FocusAssistApi {
  public:
    Module getModuleHandle(const wchar_t* name) override {
        return name == std::wstring(L"ntdll") ? this : nullptr;
    }

    Procedure getProcAddress(Module module, const char* name) override {
        const bool found = module == this && name == std::string("NtQueryWnfStateData");
        return found ? reinterpret_cast<Procedure>(query) : nullptr;
    }

    QueryWnfStateData query = answer;
};

TEST(FocusAssist, LogsWhatTheSystemAnswers) {
    const auto known = [](const std::string& profile) {
        return test::CapturedLog::Line{kLogDebug, "Focus Assist profile is " + profile};
    };

    const struct {
        int profile, result;
        test::CapturedLog::Line line;
    } cases[] = {
        {-2, -2, known("-2 = Not Supported")},
        {-1, -1, known("-1 = Failed")},
        {0, 0, known("0 = Off")},
        {1, 1, known("1 = Priority Only")},
        {2, 2, known("2 = Alarms Only")},
        {3, -2, {kLogWarning, "Focus Assist profile is unexpected: 3"}},
    };

    FakeFocusAssistApi api;
    test::CapturedLog log(kLogTrace);
    answeredStatus = 0;
    for (const auto& [profile, result, line] : cases) {
        answeredProfile = profile;
        EXPECT_EQ(getFocusAssistProfile(api), result);
        const std::vector<test::CapturedLog::Line> lines{
            {line.level, "orbelantine::getFocusAssistProfile() " + line.text}};
        EXPECT_EQ(log.take(), lines);
    }
}

TEST(FocusAssist, FailedQueryIsOffWithoutAWord) {
    FakeFocusAssistApi api;
    test::CapturedLog log(kLogTrace);
    answeredStatus = static_cast<std::int32_t>(0xC0000022);
    answeredProfile = 2;
    EXPECT_EQ(getFocusAssistProfile(api), 0);
    EXPECT_TRUE(log.take().empty());
}

TEST(FocusAssist, FailsWhereTheSystemHasNoSuchQuery) {
    FakeFocusAssistApi api;
    api.query = nullptr;
    test::CapturedLog log(kLogTrace);
    EXPECT_EQ(getFocusAssistProfile(api), -1);
    const std::vector<test::CapturedLog::Line> lines{
        {kLogError, "orbelantine::getFocusAssistProfile() Couldn't get pointer to "
                    "NtQueryWnfStateData() function."}};
    EXPECT_EQ(log.take(), lines);
}

} // namespace
} // namespace orbelantine
