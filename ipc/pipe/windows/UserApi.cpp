#include "ipc/pipe/UserApi.h"

#include "ipc/pipe/windows/Win32.h"

#include <sddl.h>

namespace orbelantine {

namespace {

// IsValidSid and ConvertSidToStringSidW only read.
PSID pipeSid(const void* sid) {
    return const_cast<void*>(sid);
}

class WindowsUserApi final : public UserApi {
  public:
    Error lastError() override { return GetLastError(); }

    Error openProcessToken(std::uint32_t access, Handle& token) override {
        HANDLE native = nullptr;
        const Error error = pipeResult(OpenProcessToken(GetCurrentProcess(), access, &native));
        token = pipeHandleOf(native);
        return error;
    }

    Error getTokenUser(Handle token, void* buffer, std::uint32_t size,
                       std::uint32_t& needed) override {
        DWORD length = 0;
        const Error error =
            pipeResult(GetTokenInformation(pipeNative(token), TokenUser, buffer, size, &length));
        needed = length;
        return error;
    }

    bool isValidSid(const void* sid) override { return IsValidSid(pipeSid(sid)); }

    Error convertSidToStringSid(const void* sid, wchar_t*& text) override {
        return pipeResult(ConvertSidToStringSidW(pipeSid(sid), &text));
    }

    Error convertStringSecurityDescriptor(const std::wstring& text, std::uint32_t revision,
                                          void*& descriptor) override {
        return pipeResult(ConvertStringSecurityDescriptorToSecurityDescriptorW(
            text.c_str(), revision, &descriptor, nullptr));
    }

    void localFree(void* memory) override { LocalFree(memory); }

    void closeHandle(Handle token) override { CloseHandle(pipeNative(token)); }
};

} // namespace

UserApi& UserApi::system() {
    static WindowsUserApi api;
    return api;
}

} // namespace orbelantine
