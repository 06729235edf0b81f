#include "ipc/trust/windows/StepLog.h"

#include "core/common/log/Log.h"

#include <windows.h>

namespace orbelantine {

void logCallFailure(const char* step, const char* call) {
    const auto error = static_cast<unsigned>(GetLastError());
    ORB_LOG_TEXT(kLogError, "%s() %s failed with %x.", step, call, error);
}

void logStepError(const char* step, const char* text) {
    ORB_LOG_TEXT(kLogError, "%s() %s.", step, text);
}

} // namespace orbelantine
