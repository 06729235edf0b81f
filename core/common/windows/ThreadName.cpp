#include "core/common/ThreadName.h"

#include <windows.h>

#include <string>

namespace orbelantine {

namespace {

using SetThreadDescriptionCall = HRESULT(WINAPI*)(HANDLE, PCWSTR);

// Looked up at run time: systems before Windows 10 1607 lack it.
SetThreadDescriptionCall findSetThreadDescription() {
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    const FARPROC call = kernel ? GetProcAddress(kernel, "SetThreadDescription") : nullptr;
    return reinterpret_cast<SetThreadDescriptionCall>(reinterpret_cast<void (*)()>(call));
}

} // namespace

void setCurrentThreadName(const char* name) {
    static const SetThreadDescriptionCall setThreadDescription = findSetThreadDescription();
    if (!setThreadDescription)
        return;
    const std::string narrow(name);
    const std::wstring wide(narrow.begin(), narrow.end());
    setThreadDescription(GetCurrentThread(), wide.c_str());
}

} // namespace orbelantine
