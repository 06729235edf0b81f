#pragma once

#include <cstdint>

namespace orbelantine {

/// What the system tells of a crash. The codes are those of Windows on every platform.
struct ExceptionRecord {
    std::uint32_t code = 0;
    std::uint32_t flags = 0;
    const void* address = nullptr;
};

/// EXCEPTION_POINTERS, without the platform's own layout: either part may be null.
struct ExceptionPointers {
    const ExceptionRecord* record = nullptr;
    /// The registers, as CrashStackApi::walk takes them.
    const void* context = nullptr;
};

} // namespace orbelantine
