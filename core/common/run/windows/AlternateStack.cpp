#include "core/common/run/AlternateStack.h"

#include <windows.h>

namespace orbelantine {

// The system keeps the room at the end of the stack, for as long as the thread lasts.
AlternateStack::AlternateStack() {
    ULONG size = kAlternateStackSize;
    (void)SetThreadStackGuarantee(&size);
}

AlternateStack::~AlternateStack() = default;

} // namespace orbelantine
