#include "core/common/crash/CExceptionHandler.h"
#include "core/common/log/Log.h"

namespace orbelantine {

// Told apart from the rest, so that neither compiler nor sanitiser has an opinion on it.
void CExceptionHandler::Crash() {
    ORB_LOG(kLogDebug, "Entering function %s");
    volatile int* const nowhere = nullptr;
    *nowhere = 1; // NOLINT(clang-analyzer-core.NullDereference): on purpose
}

} // namespace orbelantine
