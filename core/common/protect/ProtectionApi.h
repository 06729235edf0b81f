#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orbelantine {

/// The system's protection of data, bound to the user or to the machine. Any thread may call.
class ProtectionApi {
  public:
    /// The system's error number in the Windows numbering, 0 for success.
    using Error = std::uint32_t;
    using Bytes = std::vector<unsigned char>;

    /// CRYPTPROTECT_LOCAL_MACHINE: for any user of the machine, not for the current one alone.
    static constexpr std::uint32_t kLocalMachine = 4;

    virtual ~ProtectionApi() = default;

    /// CryptProtectData, without description, entropy or prompt.
    [[nodiscard]] virtual Error protect(const Bytes& plain, std::uint32_t flags, Bytes& blob) = 0;
    /// CryptUnprotectData; `plain` is whole, or untouched on failure.
    [[nodiscard]] virtual Error unprotect(const Bytes& blob, Bytes& plain) = 0;
    /// ProcessIdToSessionId of this process: 0 for one that serves the machine and not a user.
    [[nodiscard]] virtual std::uint32_t sessionId() = 0;
    /// memcpy_s: a null `from` is an invalid parameter, told by errno 22 and as the run time does,
    /// and gives zeros.
    virtual void copy(unsigned char* to, const char* from, std::size_t size) = 0;

    /// The process's real system; lives until the process ends.
    static ProtectionApi& system();
};

} // namespace orbelantine
