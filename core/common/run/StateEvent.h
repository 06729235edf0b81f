#pragma once

#include "core/common/log/Log.h"

namespace orbelantine {

/// The formats of logNotProcessed.
inline constexpr const char* kEventNotProcessed = "%s: Event %s not processed in %s";
inline constexpr const char* kEventNotProcessedCall = "%s() Event %s not processed in %s";

/// Says at debug level that `state` doesn't take an event. Its arguments are the format, the
/// qualified name of the logging operation, that of the event, and an object with getName().
template <class State>
void logNotProcessed(const char* format, const char* function, const char* event,
                     const State& state) {
    ORB_LOG_TEXT(kLogDebug, format, function, event, state.getName().c_str());
}

} // namespace orbelantine
