#pragma once

#include "core/common/crash/linux/CrashPost.h"

namespace orbelantine {

/// Where crashes of this process are left for the thread that records them.
[[nodiscard]] CrashPost& crashPost();

/// Starts the thread; false if there can be none. It takes no signals but those of its own faults.
[[nodiscard]] bool startCrashRecorder();
/// Waits for it to end.
void stopCrashRecorder();
[[nodiscard]] bool onCrashRecorder();

} // namespace orbelantine
