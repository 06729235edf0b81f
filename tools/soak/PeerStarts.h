#pragma once

#include "tools/soak/ProcessUse.h"

#include <cstdint>

namespace orbelantine::soak {

/// Starts the peer manager so often, on a stack without a radio, and stops it while its discovery
/// runs. What the process holds after a tenth of them and at the end.
struct PeerStarts {
    ProcessUse before;
    ProcessUse after;

    /// Throws std::runtime_error where something doesn't come in time, or there can be no stack.
    [[nodiscard]] static PeerStarts run(std::uint64_t starts);
};

} // namespace orbelantine::soak
