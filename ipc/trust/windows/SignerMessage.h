#pragma once

#include "ipc/trust/windows/CryptOwners.h"

#include <cstdint>
#include <string>

namespace orbelantine {

/// The signature in an executable: the certificates that it brings, and one of its signers.
struct SignerMessage {
    CertStoreOwner store;
    LocalOwner<CMSG_SIGNER_INFO> signer;

    /// Signer 0 is the file's own, further ones are nested in it. Without a signer where there is
    /// none; the log has the reason.
    [[nodiscard]] static SignerMessage read(const std::wstring& path, std::uint32_t index);

    /// Null, and a line in the log, where the signer's certificate is not among those.
    [[nodiscard]] CertContextOwner certificate() const;
};

} // namespace orbelantine
