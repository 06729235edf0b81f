#pragma once

namespace orbelantine {

inline constexpr int kCallingThread = -1;

/// Names the thread with the system's `threadId` for debuggers and crash records. Linux keeps the
/// first 15 characters.
void setThreadName(const char* name, int threadId = kCallingThread);

} // namespace orbelantine
