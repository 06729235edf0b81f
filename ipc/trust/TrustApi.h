#pragma once

#include "ipc/trust/FileEvidence.h"

#include <cstdint>
#include <memory>
#include <string>

namespace orbelantine {

/// What the system knows of a file's signatures. A check begins with signer 0. One thread uses an
/// object.
class TrustApi {
  public:
    virtual ~TrustApi() = default;

    /// Makes the system's own check ready, if it is not: false where there is none.
    [[nodiscard]] virtual bool initialize() = 0;
    /// Lets go of what initialize took.
    virtual void uninitialize() = 0;
    /// Fills in the names, links and time stamp of a signature: 0 is the file's own, further ones
    /// are nested in it. False, and the reason in the log, where there is no such signature.
    [[nodiscard]] virtual bool readSigner(const std::wstring& path, std::uint32_t index,
                                          FileEvidence& evidence) = 0;
    /// Whether the system trusts the file as a whole: 0, or a number such as those of `trust`.
    [[nodiscard]] virtual std::uint32_t verifyTrust(const std::wstring& path) = 0;

    /// The real system's, for one check.
    [[nodiscard]] static std::unique_ptr<TrustApi> system();
};

} // namespace orbelantine
