#pragma once

#include <span>

namespace orbelantine::test {

/// A way to die. The handler is set before it runs.
struct Death {
    const char* name;
    void (*die)();
};

/// Those of every platform, and those of this one.
[[nodiscard]] std::span<const Death> deaths();

/// Sets a handler and dies; 0 if that fails.
int dieOf(const Death& death);

/// The user's temporary folder is this one from now on.
void useTemporaryFolder(const char* folder);

} // namespace orbelantine::test
