#pragma once

#include "core/common/errors/ErrorCode.h"
#include "core/common/run/Clock.h"

#include <boost/function.hpp>

namespace orbelantine {

/// Gives `operation` a callback and blocks until that was called, by whichever thread, until its
/// last copy is gone, or until `bound` has passed: false then.
[[nodiscard]] bool
waitForCallback(IClock& clock, IClock::Duration bound,
                const boost::function<void(boost::function<void(error_code)>)>& operation);

} // namespace orbelantine
