#pragma once

namespace orbelantine {

/// Names the calling thread for debuggers and crash records. Linux keeps the first 15 characters.
/// Without effect where the system has no thread names.
void setCurrentThreadName(const char* name);

} // namespace orbelantine
