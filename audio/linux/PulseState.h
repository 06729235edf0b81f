#pragma once

#include "audio/linux/PulseSnapshot.h"
#include "core/common/run/IoThread.h"

#include <boost/smart_ptr/enable_shared_from_this.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace orbelantine {

/// Hears of endpoints. Its fields are PulseState's.
struct PulseDeviceListener {
    boost::shared_ptr<AudioDeviceCallback> callback;
    PulseSnapshotPtr seen;
    bool active = true;
};

/// Hears of one endpoint's volume, and of that which comes in its place. Its fields are
/// PulseState's.
struct PulseVolumeListener {
    boost::shared_ptr<AudioVolumeCallback> callback;
    PulseKey key;
    PulseVolume seen;
    bool pending = false;
    bool active = true;
};

/// What is known of the server, and who hears of it. Any thread may call, and no call waits for a
/// callback: those of devices come where tellDevices is called, those of volumes on the notifier,
/// for each listener the newest state and once for all that came meanwhile.
class PulseState : public boost::enable_shared_from_this<PulseState> {
  public:
    using DeviceListenerPtr = std::shared_ptr<PulseDeviceListener>;
    using VolumeListenerPtr = std::shared_ptr<PulseVolumeListener>;

    explicit PulseState(boost::weak_ptr<IoThread::Queue> notifier);

    [[nodiscard]] PulseSnapshotPtr snapshot() const;

    /// What the server tells now; `tellDevices` is yet to be called.
    void replace(PulseSnapshot snapshot);
    void tellDevices();

    /// From the first time on that it is known whether there is a server.
    void settle();
    [[nodiscard]] bool waitUntilSettled(std::chrono::steady_clock::time_point until);

    /// Hears of what differs from `seen`.
    [[nodiscard]] DeviceListenerPtr
    addListener(const boost::shared_ptr<AudioDeviceCallback>& callback, PulseSnapshotPtr seen);
    /// Null if there is no such endpoint.
    [[nodiscard]] VolumeListenerPtr
    addListener(const boost::shared_ptr<AudioVolumeCallback>& callback, const PulseKey& key);
    void removeListener(const DeviceListenerPtr& listener);
    void removeListener(const VolumeListenerPtr& listener);

    /// No notification of a volume begins any more. Whether one is under way.
    [[nodiscard]] bool end();

  private:
    class Telling;

    [[nodiscard]] bool markChanged();
    void notifyVolumes();
    void notifyVolume(PulseVolumeListener& listener);
    void tellChanges(PulseDeviceListener& listener);
    [[nodiscard]] bool isActive(const PulseDeviceListener& listener) const;

    const boost::weak_ptr<IoThread::Queue> mNotifier;
    mutable std::mutex mMutex;
    std::condition_variable mSettledChanged;
    PulseSnapshotPtr mSnapshot = std::make_shared<const PulseSnapshot>();
    bool mSettled = false;
    std::vector<DeviceListenerPtr> mDeviceListeners;
    std::vector<VolumeListenerPtr> mVolumeListeners;
    bool mNotifierPosted = false;
    bool mTelling = false;
    bool mEnded = false;
};

} // namespace orbelantine
