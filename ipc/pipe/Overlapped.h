#pragma once

#include <cstdint>

namespace orbelantine {

/// An object of the system: a pipe's end, an event, a process, a token. On Linux a file descriptor.
using PipeHandle = std::intptr_t;

inline constexpr PipeHandle kInvalidPipeHandle = -1;

/// OVERLAPPED: an operation in progress on a handle. The system writes into it until the operation
/// is over, so it neither moves nor goes before.
struct Overlapped {
    std::uintptr_t internal = 0;
    std::uintptr_t internalHigh = 0;
    std::uint32_t offset = 0;
    std::uint32_t offsetHigh = 0;
    PipeHandle event = 0;
};

static_assert(sizeof(Overlapped) == 32);

} // namespace orbelantine
