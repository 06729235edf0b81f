#include "core/common/probes/FocusAssist.h"

#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace orbelantine::test {
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

TEST(FocusAssist, IsWhatTheSystemAnswersAndLoggedAndFailsWithoutTheQuery) {
    constexpr auto kAccessDenied = static_cast<std::int32_t>(0xC0000022);

    const struct {
        std::int32_t status;
        int profile;
        int result;
        Texts lines;
    } cases[] = {
        {0, -2, -2, {"debug Focus Assist profile is -2 = Not Supported"}},
        {0, -1, -1, {"debug Focus Assist profile is -1 = Failed"}},
        {0, 0, 0, {"debug Focus Assist profile is 0 = Off"}},
        {0, 1, 1, {"debug Focus Assist profile is 1 = Priority Only"}},
        {0, 2, 2, {"debug Focus Assist profile is 2 = Alarms Only"}},
        {0, 3, -2, {"warning Focus Assist profile is unexpected: 3"}},
        // A query that fails counts as off, without a word.
        {kAccessDenied, 2, 0, {}},
    };

    FakeFocusAssistApi api;
    CapturedLog log(kLogTrace, "orbelantine::getFocusAssistProfile() ");
    for (const auto& each : cases) {
        answeredStatus = each.status;
        answeredProfile = each.profile;
        EXPECT_EQ(getFocusAssistProfile(api), each.result);
        EXPECT_EQ(log.told(), each.lines);
    }
    api.query = nullptr;
    EXPECT_EQ(getFocusAssistProfile(api), -1);
    EXPECT_EQ(log.told(), Texts{"error Couldn't get pointer to NtQueryWnfStateData() function."});
}

} // namespace
} // namespace orbelantine::test
