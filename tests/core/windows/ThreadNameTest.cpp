#include "core/common/run/ThreadName.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace orbelantine {
namespace {

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
