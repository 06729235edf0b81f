#include "core/common/run/CallGate.h"

namespace orbelantine {

bool CallGate::shut(std::chrono::milliseconds bound) {
    mCalls.fetch_or(kShut);
    std::unique_lock lock(mMutex);
    return mEmpty.wait_for(lock, bound, [this] { return mCalls.load() == kShut; });
}

void CallGate::tellEmpty() noexcept {
    const std::lock_guard lock(mMutex);
    mEmpty.notify_all();
}

} // namespace orbelantine
