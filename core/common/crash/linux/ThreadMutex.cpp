#include "core/common/crash/linux/ThreadMutex.h"

#include <unistd.h>

#include <csignal>
#include <map>

namespace orbelantine {

namespace {

constexpr std::uint32_t kOwned = 0;
constexpr std::uint32_t kAbandoned = 0x80;
constexpr std::uint32_t kTimeout = 258;

bool isAlive(pid_t thread) {
    return tgkill(getpid(), thread, 0) == 0;
}

} // namespace

std::shared_ptr<ThreadMutex> ThreadMutex::named(const std::wstring& name) {
    // Never destroyed: the host may let go of its objects while the process ends.
    static auto& lock = *new std::mutex;
    static auto& byName = *new std::map<std::wstring, std::weak_ptr<ThreadMutex>>;
    const std::lock_guard guard(lock);
    std::shared_ptr<ThreadMutex> mutex = byName[name].lock();
    if (mutex == nullptr)
        byName[name] = mutex = std::make_shared<ThreadMutex>();
    return mutex;
}

std::uint32_t ThreadMutex::tryLock() {
    const std::lock_guard guard(mMutex);
    const pid_t caller = gettid();
    const bool owned = mOwner != 0 && mOwner != caller;
    if (owned && isAlive(mOwner))
        return kTimeout;
    mCount = mOwner == caller ? mCount + 1 : 1;
    mOwner = caller;
    return owned ? kAbandoned : kOwned;
}

void ThreadMutex::unlock() {
    const std::lock_guard guard(mMutex);
    if (mOwner == gettid() && --mCount == 0)
        mOwner = 0;
}

} // namespace orbelantine
