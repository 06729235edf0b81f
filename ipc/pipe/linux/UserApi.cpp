#include "ipc/pipe/UserApi.h"

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/linux/LastPipeError.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string_view>

namespace orbelantine {

namespace {

// The SID of a user of a Unix system, as Samba writes it.
constexpr std::wstring_view kUnixUser = L"S-1-22-1-";
// Of the token that is asked for; nothing is open for it.
constexpr UserApi::Handle kOwnToken = 1;

struct UserSid {
    std::uint32_t mark;
    uid_t user;
};

constexpr std::uint32_t kSidMark = 0x55444953;

/// As TOKEN_USER: the SID lies behind the pointer to it.
struct LinuxTokenUser {
    const void* sid;
    std::uint32_t attributes;
    UserSid user;
};

std::wstring textOf(uid_t user) {
    return std::wstring(kUnixUser) + std::to_wstring(user);
}

// The memory of localFree, null where there is none.
wchar_t* copied(std::wstring_view text) {
    auto* const memory = static_cast<wchar_t*>(std::malloc((text.size() + 1) * sizeof(wchar_t)));
    if (memory) {
        std::wmemcpy(memory, text.data(), text.size());
        memory[text.size()] = L'\0';
    }
    return memory;
}

/// A token is that of the process, and a descriptor the text it is made from: whom a pipe lets in
/// is decided by its folder and its socket, for the effective user alone.
class LinuxUserApi final : public UserApi {
  public:
    Error lastError() override { return lastPipeError(); }

    Error openProcessToken(std::uint32_t, Handle& token) override {
        token = kOwnToken;
        return win32::kErrorSuccess;
    }

    Error getTokenUser(Handle token, void* buffer, std::uint32_t size,
                       std::uint32_t& needed) override {
        if (token != kOwnToken)
            return keptPipeError(win32::kErrorInvalidHandle);
        needed = sizeof(LinuxTokenUser);
        if (!buffer || size < needed)
            return keptPipeError(win32::kErrorInsufficientBuffer);
        LinuxTokenUser user{};
        user.sid = static_cast<const std::byte*>(buffer) + offsetof(LinuxTokenUser, user);
        user.user = {kSidMark, ::geteuid()};
        std::memcpy(buffer, &user, sizeof(user));
        return win32::kErrorSuccess;
    }

    bool isValidSid(const void* sid) override { return sid && read(sid).mark == kSidMark; }

    Error convertSidToStringSid(const void* sid, wchar_t*& text) override {
        if (!isValidSid(sid))
            return keptPipeError(win32::kErrorInvalidSid);
        return given(copied(textOf(read(sid).user)), text);
    }

    Error convertStringSecurityDescriptor(const std::wstring& text, std::uint32_t revision,
                                          void*& descriptor) override {
        if (revision != 1 || text != L"D:PAI(A;; FA;;;" + textOf(::geteuid()) + L")")
            return keptPipeError(win32::kErrorInvalidSid);
        wchar_t* copy = nullptr;
        const Error error = given(copied(text), copy);
        descriptor = copy;
        return error;
    }

    void localFree(void* memory) override { std::free(memory); }

    void closeHandle(Handle) override {}

  private:
    static UserSid read(const void* sid) {
        UserSid copy{};
        std::memcpy(&copy, sid, sizeof(copy));
        return copy;
    }

    static Error given(wchar_t* memory, wchar_t*& text) {
        text = memory;
        return memory ? win32::kErrorSuccess : keptPipeError(win32::kErrorNotEnoughMemory);
    }
};

} // namespace

UserApi& UserApi::system() {
    static LinuxUserApi api;
    return api;
}

} // namespace orbelantine
