#pragma once

#include "ipc/pipe/Overlapped.h"

#include <windows.h>

#include <cstddef>

namespace orbelantine {

static_assert(sizeof(Overlapped) == sizeof(OVERLAPPED));
static_assert(alignof(Overlapped) == alignof(OVERLAPPED));
static_assert(offsetof(Overlapped, internalHigh) == offsetof(OVERLAPPED, InternalHigh));
static_assert(offsetof(Overlapped, offset) == offsetof(OVERLAPPED, Offset));
static_assert(offsetof(Overlapped, offsetHigh) == offsetof(OVERLAPPED, OffsetHigh));
static_assert(offsetof(Overlapped, event) == offsetof(OVERLAPPED, hEvent));

/// What the pipes' adapters share: our types as the system's, and what a call came to.
/// @{
inline HANDLE pipeNative(PipeHandle handle) {
    return reinterpret_cast<HANDLE>(handle);
}

inline PipeHandle pipeHandleOf(HANDLE handle) {
    return reinterpret_cast<PipeHandle>(handle);
}

inline OVERLAPPED* pipeNative(Overlapped& overlapped) {
    return reinterpret_cast<OVERLAPPED*>(&overlapped);
}

/// To be called right after the call.
inline DWORD pipeResult(BOOL succeeded) {
    return succeeded ? ERROR_SUCCESS : GetLastError();
}

/// @}

} // namespace orbelantine
