#pragma once

#include "tools/soak/ProcessUse.h"

#include <cstdint>

namespace orbelantine::soak {

/// So often a client connects to a pipe's server, says a word, gets it back and closes. What the
/// process holds after a tenth of them and at the end.
struct PipeTalks {
    ProcessUse before;
    ProcessUse after;

    /// Throws std::runtime_error where a talk fails.
    [[nodiscard]] static PipeTalks run(std::uint64_t talks);
};

} // namespace orbelantine::soak
