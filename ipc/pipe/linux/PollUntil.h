#pragma once

#include <poll.h>

#include <chrono>
#include <span>

namespace orbelantine {

/// poll with a moment in place of a time-out, through signals.
[[nodiscard]] int pollUntil(std::span<pollfd> files,
                            std::chrono::steady_clock::time_point deadline);

} // namespace orbelantine
