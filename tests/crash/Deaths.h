#pragma once

#include <span>

namespace orbelantine::test {

/// A way to die. The handler is set after `prepare` and before `die`.
struct Death {
    const char* name;
    void (*die)();
    void (*prepare)() = nullptr;
};

[[nodiscard]] std::span<const Death> deaths();
[[nodiscard]] std::span<const Death> platformDeaths();

void writeNowhere();

/// Sets a handler and dies; 0 if that fails.
int dieOf(const Death& death);

/// The user's temporary folder is this one from now on.
void useTemporaryFolder(const char* folder);

} // namespace orbelantine::test
