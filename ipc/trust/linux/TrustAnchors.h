#pragma once

#include "ipc/trust/linux/OpenSsl.h"

#include <sys/types.h>

#include <string>
#include <vector>

namespace orbelantine {

/// Where trust begins: the certificates in a folder that nobody else could have put there. Folder
/// and files, and the folders above, belong to one of `owners` and can be written by nobody else;
/// folders above may be sticky instead.
struct AnchorFolder {
    std::string path;
    std::vector<uid_t> owners;

    /// /etc/orbelantine/trust, which is root's; for tests $ORBELANTINE_TRUST_DIR, which may be the
    /// user's too.
    [[nodiscard]] static AnchorFolder inUse();
};

/// What the folder's *.pem hold. Empty where the folder is refused, for a reason that the log has;
/// a refused file is left out. Null when out of memory.
[[nodiscard]] CertificateStore readAnchors(const AnchorFolder& folder);

} // namespace orbelantine
