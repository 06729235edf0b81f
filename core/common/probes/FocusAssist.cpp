#include "core/common/probes/FocusAssist.h"

#include "core/common/log/Log.h"

#include <map>

namespace orbelantine {

namespace {

constexpr int kNotSupported = -2;
constexpr int kFailed = -1;
constexpr int kOff = 0;
constexpr std::uint64_t kActiveProfileState = 0x0d83063ea3bf1c75;

const std::map<int, const char*> kProfiles = {
    {kNotSupported, "Not Supported"},
    {kFailed, "Failed"},
    {kOff, "Off"},
    {1, "Priority Only"},
    {2, "Alarms Only"},
};

FocusAssistApi::QueryWnfStateData findQuery(FocusAssistApi& api) {
    const FocusAssistApi::Module module = api.getModuleHandle(L"ntdll");
    const FocusAssistApi::Procedure query =
        module ? api.getProcAddress(module, "NtQueryWnfStateData") : nullptr;
    return reinterpret_cast<FocusAssistApi::QueryWnfStateData>(query);
}

} // namespace

int getFocusAssistProfile() {
    return getFocusAssistProfile(FocusAssistApi::system());
}

int getFocusAssistProfile(FocusAssistApi& api) {
    const FocusAssistApi::QueryWnfStateData query = findQuery(api);
    if (query == nullptr) {
        ORB_LOG(kLogError, "%s() Couldn't get pointer to NtQueryWnfStateData() function.");
        return kFailed;
    }
    int profile = kOff;
    std::uint32_t size = sizeof profile;
    std::uint32_t changeStamp = 0;
    // A query that fails counts as off, and isn't logged.
    if (query(&kActiveProfileState, nullptr, nullptr, &changeStamp, &profile, &size) < 0)
        return kOff;
    const auto known = kProfiles.find(profile);
    if (known == kProfiles.end()) {
        ORB_LOG(kLogWarning, "%s() Focus Assist profile is unexpected: %d", profile);
        return kNotSupported;
    }
    ORB_LOG(kLogDebug, "%s() Focus Assist profile is %d = %s", profile, known->second);
    return profile;
}

} // namespace orbelantine
