#pragma once

#include "tools/virtual_phone/program/Options.h"

#include <iosfwd>

namespace orbelantine::phone {

/// A whole session, from listening to the last line of the log, until a signal ends it. Returns the
/// process's exit status; what a user needs to know goes to `out` and `err`.
[[nodiscard]] int runVirtualPhone(const Options& options, std::ostream& out, std::ostream& err);

} // namespace orbelantine::phone
