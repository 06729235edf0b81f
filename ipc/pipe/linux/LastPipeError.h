#pragma once

#include <cstdint>

namespace orbelantine {

/// What the calling thread's last failed call left; one for all of the pipe's calls, as on Windows.
[[nodiscard]] std::uint32_t lastPipeError();

/// `error`, kept as the thread's last where it is none of success.
std::uint32_t keptPipeError(std::uint32_t error);

} // namespace orbelantine
