#include "core/common/run/KernelEvent.h"

#include <windows.h>

namespace orbelantine::kernel_event {

namespace {

static_assert(kWaitTimeout == WAIT_TIMEOUT);
static_assert(kWaitFailed == WAIT_FAILED);

WaitResult resultOf(DWORD value) {
    return {value, value == WAIT_FAILED ? GetLastError() : ERROR_SUCCESS};
}

} // namespace

Handle create(bool manualReset, bool signalled) {
    return CreateEventW(nullptr, manualReset, signalled, nullptr);
}

void close(Handle event) {
    CloseHandle(event);
}

void set(Handle event) {
    SetEvent(event);
}

void reset(Handle event) {
    ResetEvent(event);
}

WaitResult waitForOne(Handle event, std::uint32_t milliseconds) {
    return resultOf(WaitForSingleObject(event, milliseconds));
}

WaitResult waitForMany(const Handle* events, std::uint32_t count, bool all,
                       std::uint32_t milliseconds) {
    return resultOf(WaitForMultipleObjects(count, events, all, milliseconds));
}

} // namespace orbelantine::kernel_event
