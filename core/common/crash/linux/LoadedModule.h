#pragma once

#include <cstdint>

namespace orbelantine {

/// A library or program in memory. The name lasts as long as it stays loaded; the program's own is
/// empty.
struct LoadedModule {
    const char* path = nullptr;
    std::uintptr_t base = 0;

    explicit operator bool() const { return path != nullptr; }
};

/// The one that the address lies in, if any. Takes no lock: also for signal handlers.
[[nodiscard]] LoadedModule loadedModuleAt(std::uintptr_t address);

} // namespace orbelantine
