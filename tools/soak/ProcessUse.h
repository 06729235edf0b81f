#pragma once

#include <cstddef>

namespace orbelantine::soak {

/// What this process holds of the system.
struct ProcessUse {
    std::size_t residentKb = 0;
    std::size_t descriptors = 0;
    std::size_t threads = 0;

    [[nodiscard]] static ProcessUse now();
};

} // namespace orbelantine::soak
