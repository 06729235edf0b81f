#include "audio/linux/PulseState.h"

#include "audio/AudioDeviceCallback.h"
#include "audio/AudioVolumeCallback.h"

#include <utility>

namespace orbelantine {

/// Holds the mutex but while a callback is called.
class PulseState::Telling {
  public:
    Telling(PulseState& state, std::unique_lock<std::mutex>& lock)
        : mState(state)
        , mLock(lock) {
        mState.mTelling = true;
        mLock.unlock();
    }

    ~Telling() {
        mLock.lock();
        mState.mTelling = false;
    }

    Telling(const Telling&) = delete;
    Telling& operator=(const Telling&) = delete;

  private:
    PulseState& mState;
    std::unique_lock<std::mutex>& mLock;
};

PulseState::PulseState(boost::weak_ptr<IoThread::Queue> notifier)
    : mNotifier(std::move(notifier)) {}

PulseSnapshotPtr PulseState::snapshot() const {
    const std::lock_guard lock(mMutex);
    return mSnapshot;
}

void PulseState::replace(PulseSnapshot snapshot) {
    auto shared = std::make_shared<const PulseSnapshot>(std::move(snapshot));
    bool post = false;
    {
        const std::lock_guard lock(mMutex);
        mSnapshot.swap(shared);
        post = markChanged() && !std::exchange(mNotifierPosted, true);
    }
    if (post)
        IoThread::post(mNotifier, [self = shared_from_this()] { self->notifyVolumes(); });
}

bool PulseState::markChanged() {
    bool any = false;
    for (const VolumeListenerPtr& listener : mVolumeListeners) {
        const PulseEndpoint* const endpoint = mSnapshot->find(listener->key);
        if (endpoint == nullptr || endpoint->volume == listener->seen)
            continue;
        listener->seen = endpoint->volume;
        listener->pending = true;
        any = true;
    }
    return any;
}

void PulseState::notifyVolumes() {
    std::vector<VolumeListenerPtr> listeners;
    {
        const std::lock_guard lock(mMutex);
        mNotifierPosted = false;
        listeners = mVolumeListeners;
    }
    for (const VolumeListenerPtr& listener : listeners)
        notifyVolume(*listener);
}

void PulseState::notifyVolume(PulseVolumeListener& listener) {
    std::unique_lock lock(mMutex);
    if (mEnded || !listener.active || !std::exchange(listener.pending, false))
        return;
    const AudioVolumeNotification news{listener.seen.mute, listener.seen.level};
    const Telling telling(*this, lock);
    listener.callback->onNotify(&news);
}

void PulseState::tellDevices() {
    std::vector<DeviceListenerPtr> listeners;
    {
        const std::lock_guard lock(mMutex);
        listeners = mDeviceListeners;
    }
    for (const DeviceListenerPtr& listener : listeners)
        tellChanges(*listener);
}

void PulseState::tellChanges(PulseDeviceListener& listener) {
    PulseSnapshotPtr before;
    PulseSnapshotPtr after;
    {
        const std::lock_guard lock(mMutex);
        before = std::exchange(listener.seen, mSnapshot);
        after = mSnapshot;
    }
    if (before == after)
        return;
    for (const PulseChange& change : changesBetween(*before, *after)) {
        if (!isActive(listener))
            return;
        change(*listener.callback);
    }
}

bool PulseState::isActive(const PulseDeviceListener& listener) const {
    const std::lock_guard lock(mMutex);
    return listener.active;
}

void PulseState::settle() {
    {
        const std::lock_guard lock(mMutex);
        mSettled = true;
    }
    mSettledChanged.notify_all();
}

bool PulseState::waitUntilSettled(std::chrono::steady_clock::time_point until) {
    std::unique_lock lock(mMutex);
    return mSettledChanged.wait_until(lock, until, [this] { return mSettled; });
}

PulseState::DeviceListenerPtr
PulseState::addListener(const boost::shared_ptr<AudioDeviceCallback>& callback,
                        PulseSnapshotPtr seen) {
    auto listener = std::make_shared<PulseDeviceListener>();
    listener->callback = callback;
    listener->seen = std::move(seen);
    const std::lock_guard lock(mMutex);
    return mDeviceListeners.emplace_back(std::move(listener));
}

PulseState::VolumeListenerPtr
PulseState::addListener(const boost::shared_ptr<AudioVolumeCallback>& callback,
                        const PulseKey& key) {
    const std::lock_guard lock(mMutex);
    const PulseEndpoint* const endpoint = mSnapshot->find(key);
    if (endpoint == nullptr)
        return nullptr;
    return mVolumeListeners.emplace_back(std::make_shared<PulseVolumeListener>(
        PulseVolumeListener{.callback = callback, .key = key, .seen = endpoint->volume}));
}

void PulseState::removeListener(const DeviceListenerPtr& listener) {
    const std::lock_guard lock(mMutex);
    listener->active = false;
    std::erase(mDeviceListeners, listener);
}

void PulseState::removeListener(const VolumeListenerPtr& listener) {
    const std::lock_guard lock(mMutex);
    listener->active = false;
    std::erase(mVolumeListeners, listener);
}

bool PulseState::end() {
    const std::lock_guard lock(mMutex);
    mEnded = true;
    return mTelling;
}

} // namespace orbelantine
