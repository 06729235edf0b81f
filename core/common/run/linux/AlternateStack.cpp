#include "core/common/run/AlternateStack.h"

#include <sys/mman.h>

#include <csignal>

namespace orbelantine {

// Without room a thread works as well; only the end of its stack goes unrecorded.
AlternateStack::AlternateStack() {
    stack_t before{};
    const bool hasOne = sigaltstack(nullptr, &before) != 0 || (before.ss_flags & SS_DISABLE) == 0;
    if (hasOne)
        return;
    void* const room = mmap(nullptr, kAlternateStackSize, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK | MAP_NORESERVE, -1, 0);
    if (room == MAP_FAILED)
        return;
    mRoom = room;
    stack_t own{};
    own.ss_sp = mRoom;
    own.ss_size = kAlternateStackSize;
    (void)sigaltstack(&own, nullptr);
}

AlternateStack::~AlternateStack() {
    if (mRoom == nullptr)
        return;
    stack_t none{};
    none.ss_flags = SS_DISABLE;
    (void)sigaltstack(&none, nullptr);
    (void)munmap(mRoom, kAlternateStackSize);
}

} // namespace orbelantine
