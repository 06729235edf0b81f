#include "core/common/run/ThreadName.h"

#include <windows.h>

#include <iterator>
#include <memory>
#include <string>

namespace orbelantine {

namespace {

constexpr DWORD kThreadNaming = 0x406D1388;
constexpr ULONG_PTR kNamingRecord = 0x1000;

using SetThreadDescriptionCall = HRESULT(WINAPI*)(HANDLE, PCWSTR);

// Looked up at run time: systems before Windows 10 1607 lack it.
SetThreadDescriptionCall findSetThreadDescription() {
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    const FARPROC call = kernel ? GetProcAddress(kernel, "SetThreadDescription") : nullptr;
    return reinterpret_cast<SetThreadDescriptionCall>(reinterpret_cast<void (*)()>(call));
}

void describe(HANDLE thread, const std::string& name) {
    static const SetThreadDescriptionCall setThreadDescription = findSetThreadDescription();
    if (setThreadDescription)
        setThreadDescription(thread, std::wstring(name.begin(), name.end()).c_str());
}

void describe(DWORD threadId, const char* name) {
    const std::unique_ptr<void, decltype(&CloseHandle)> thread(
        OpenThread(THREAD_SET_LIMITED_INFORMATION, FALSE, threadId), CloseHandle);
    if (thread)
        describe(thread.get(), name);
}

LONG CALLBACK swallow(EXCEPTION_POINTERS* exception) {
    return exception->ExceptionRecord->ExceptionCode == kThreadNaming ? EXCEPTION_CONTINUE_EXECUTION
                                                                      : EXCEPTION_CONTINUE_SEARCH;
}

/// Debuggers of before SetThreadDescription learn the name from an exception, which they see before
/// the process does. Nobody else gets to see it after the handler here, the last of the vectored.
void tellDebugger(DWORD threadId, const char* name) {
    const std::unique_ptr<void, decltype(&RemoveVectoredExceptionHandler)> handler(
        AddVectoredExceptionHandler(0, swallow), RemoveVectoredExceptionHandler);
    if (!handler)
        return;
    const ULONG_PTR words[] = {kNamingRecord, reinterpret_cast<ULONG_PTR>(name), threadId, 0};
    RaiseException(kThreadNaming, 0, static_cast<DWORD>(std::size(words)), words);
}

} // namespace

void setThreadName(const char* name, int threadId) {
    const DWORD id =
        threadId == kCallingThread ? GetCurrentThreadId() : static_cast<DWORD>(threadId);
    describe(id, name);
    tellDebugger(static_cast<DWORD>(threadId), name);
}

} // namespace orbelantine
