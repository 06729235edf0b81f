#pragma once

#include "ipc/pipe/Overlapped.h"

#include <cstdint>
#include <string>

namespace orbelantine {

/// The system's calls that tell who the user is, and make a text about access a descriptor. An
/// operation returns the system's error number, 0 for success; outputs are meaningful only then.
/// Any thread may call.
class UserApi {
  public:
    using Error = std::uint32_t;
    using Handle = PipeHandle;

    virtual ~UserApi() = default;

    /// What the calling thread's last failed call left.
    [[nodiscard]] virtual Error lastError() = 0;

    /// The token of this process.
    [[nodiscard]] virtual Error openProcessToken(std::uint32_t access, Handle& token) = 0;
    /// The TOKEN_USER of a token into `size` bytes, null to learn how many are `needed` (122). Its
    /// first word points to the SID, within the buffer.
    [[nodiscard]] virtual Error getTokenUser(Handle token, void* buffer, std::uint32_t size,
                                             std::uint32_t& needed) = 0;
    [[nodiscard]] virtual bool isValidSid(const void* sid) = 0;
    /// The text is the caller's, to be freed by localFree.
    [[nodiscard]] virtual Error convertSidToStringSid(const void* sid, wchar_t*& text) = 0;
    /// The descriptor is the caller's, to be freed by localFree.
    [[nodiscard]] virtual Error convertStringSecurityDescriptor(const std::wstring& text,
                                                                std::uint32_t revision,
                                                                void*& descriptor) = 0;
    virtual void localFree(void* memory) = 0;
    virtual void closeHandle(Handle token) = 0;

    /// The process's real system; lives until the process ends.
    static UserApi& system();
};

} // namespace orbelantine
