#include "core/common/crash/windows/SymbolGuard.h"

#include <windows.h>

#include <atomic>

namespace orbelantine {

namespace {

// One crash is recorded at a time.
std::atomic<DWORD> readingThread = 0;
// The compiler's own jump: the run time's would unwind frames that belong to the exception.
void* readerEscape[5];

} // namespace

[[gnu::noinline]] bool readSymbolsGuarded(const std::function<void()>& read) {
    if (__builtin_setjmp(readerEscape) != 0) {
        readingThread = 0;
        return false;
    }
    readingThread = GetCurrentThreadId();
    read();
    readingThread = 0;
    return true;
}

[[gnu::noinline]] void giveUpReadingSymbols() {
    if (readingThread == GetCurrentThreadId())
        __builtin_longjmp(readerEscape, 1);
}

} // namespace orbelantine
