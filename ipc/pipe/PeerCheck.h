#pragma once

#include "core/common/config/KVStore.h"
#include "ipc/pipe/PipeSystem.h"

#include <string>

namespace orbelantine {

/// What a pipe's end or server is told about the peers that it takes.
struct PeerPolicy {
    /// Enters the defaults into `store` where a key is missing.
    explicit PeerPolicy(KVStore& store);

    /// An expression for the subject of the peer's certificate.
    std::string signerName;
    bool verifySignature;
};

enum class PeerRole { Client, Server };

/// The path by which the peer's executable can be read as long as the pipe is open; empty, and the
/// reason in the log, where the system doesn't tell.
[[nodiscard]] std::wstring peerPath(PipeApi& api, PipeHandle pipe, PeerRole role);

/// Whether the executable is signed in the policy's name and trusted.
[[nodiscard]] bool peerIsTrusted(const PipeSystem& system, const PeerPolicy& policy,
                                 const std::wstring& path);

} // namespace orbelantine
