#pragma once

#include "tools/l2cap_bridge/Options.h"

#include <iosfwd>

namespace orbelantine::bridge {

class L2capApi;

/// The whole program, from the look at the radio until a signal ends it or the radio is gone.
/// What a user needs to know goes to `out` and `err`.
[[nodiscard]] ExitStatus runBridge(const Options& options, L2capApi& l2cap, std::ostream& out,
                                   std::ostream& err);

} // namespace orbelantine::bridge
