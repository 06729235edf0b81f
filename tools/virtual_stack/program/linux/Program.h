#pragma once

#include "tools/virtual_stack/program/linux/Options.h"

#include <iosfwd>

namespace orbelantine::stack {

/// The stack, from its bus to its end by a signal. Returns the process's exit status; what a user
/// needs to know goes to `out` and `err`.
[[nodiscard]] int runVirtualStack(const Options& options, std::ostream& out, std::ostream& err);

} // namespace orbelantine::stack
