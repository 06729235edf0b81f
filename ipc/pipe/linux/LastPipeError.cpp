#include "ipc/pipe/linux/LastPipeError.h"

namespace orbelantine {

namespace {

thread_local std::uint32_t lastError = 0;

} // namespace

std::uint32_t lastPipeError() {
    return lastError;
}

std::uint32_t keptPipeError(std::uint32_t error) {
    if (error != 0)
        lastError = error;
    return error;
}

} // namespace orbelantine
