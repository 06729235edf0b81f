#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace orbelantine {

/// Results of a check of trust, under Windows' names and with its numbers.
namespace trust {
inline constexpr std::uint32_t kNoSignature = 0x800B0100;
inline constexpr std::uint32_t kSubjectFormUnknown = 0x800B0003;
inline constexpr std::uint32_t kBadDigest = 0x80096010;
inline constexpr std::uint32_t kUntrustedRoot = 0x800B0109;
inline constexpr std::uint32_t kExpired = 0x800B0101;
inline constexpr std::uint32_t kWrongUsage = 0x800B0110;
} // namespace trust

/// SYSTEMTIME: year, month, day of the week, day, hour, minute, second, millisecond.
using SystemTime = std::array<std::uint16_t, 8>;

/// What a check of a file has found out.
struct FileEvidence {
    std::wstring filePath;
    bool hasCertificate = false;
    bool signatureVerified = false;
    std::uint32_t trustResult = trust::kNoSignature;
    std::wstring subjectName;
    std::wstring issuerName;
    std::wstring programName;
    std::wstring moreInfoLink;
    std::wstring publisherLink;
    /// Local time of the counter-signature; all zero without one.
    SystemTime timeStamp{};
};

} // namespace orbelantine
