#include "core/common/crash/linux/CrashFrames.h"

#include "core/common/crash/linux/LoadedModule.h"

#include <ucontext.h>
#include <unwind.h>

namespace orbelantine {

namespace {

struct FrameSearch {
    CrashFrames& frames;
    // Frames before this one are the handler's own; 0 once it was met.
    std::uintptr_t from;
};

_Unwind_Reason_Code addFrame(_Unwind_Context* context, void* argument) {
    auto& search = *static_cast<FrameSearch*>(argument);
    const std::uintptr_t counter = _Unwind_GetIP(context);
    if (search.from != 0 && counter != search.from)
        return _URC_NO_REASON;
    search.from = 0;
    if (counter == 0)
        return _URC_END_OF_STACK;
    search.frames.add(counter);
    return search.frames.count < CrashFrames::kMost ? _URC_NO_REASON : _URC_END_OF_STACK;
}

void unwindFrom(std::uintptr_t counter, CrashFrames& frames) {
    FrameSearch search{frames, counter};
    (void)_Unwind_Backtrace(addFrame, &search);
}

} // namespace

void captureFrames(CrashFrames& frames) {
    frames.count = 0;
    unwindFrom(0, frames);
}

#if defined(__x86_64__)

void captureInterruptedFrames(CrashFrames& frames, void* context) {
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const auto counter = static_cast<std::uintptr_t>(registers[REG_RIP]);
    const auto stack = static_cast<std::uintptr_t>(registers[REG_RSP]);
    frames.count = 0;
    if (loadedModuleAt(counter)) {
        unwindFrom(counter, frames);
        if (frames.count == 0)
            frames.add(counter);
        return;
    }
    // Nothing tells how to unwind from here; where a call led here, its return address is on top.
    frames.add(counter);
    const std::uintptr_t caller = *reinterpret_cast<const std::uintptr_t*>(stack);
    if (!loadedModuleAt(caller))
        return;
    registers[REG_RIP] = static_cast<greg_t>(caller);
    const std::uintptr_t beforeCall = stack + sizeof caller;
    registers[REG_RSP] = static_cast<greg_t>(beforeCall);
    unwindFrom(caller, frames);
    registers[REG_RIP] = static_cast<greg_t>(counter);
    registers[REG_RSP] = static_cast<greg_t>(stack);
}

#else
#error "The registers of this processor are not known here."
#endif

} // namespace orbelantine
