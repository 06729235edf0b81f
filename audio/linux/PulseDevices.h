#pragma once

#include "audio/AudioApi.h"
#include "audio/linux/PulseConnection.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace orbelantine {

/// Which listeners an object has registered; unregistered with it.
template <class ListenerPtr>
class PulseRegistrations {
  public:
    explicit PulseRegistrations(PulseState& state)
        : mState(state) {}

    ~PulseRegistrations() {
        for (const ListenerPtr& listener : mListeners)
            mState.removeListener(listener);
    }

    PulseRegistrations(const PulseRegistrations&) = delete;
    PulseRegistrations& operator=(const PulseRegistrations&) = delete;

    void add(ListenerPtr listener) { mListeners.push_back(std::move(listener)); }

    template <class CallbackPtr>
    AudioResult remove(const CallbackPtr& callback) {
        const auto found =
            std::find_if(mListeners.begin(), mListeners.end(),
                         [&](const auto& each) { return each->callback == callback; });
        if (found == mListeners.end())
            return hresult::kNotFound;
        mState.removeListener(*found);
        mListeners.erase(found);
        return hresult::kOk;
    }

  private:
    PulseState& mState;
    std::vector<ListenerPtr> mListeners;
};

class PulseEnumerator : public AudioDeviceEnumerator {
  public:
    explicit PulseEnumerator(boost::shared_ptr<PulseConnection> connection);

    [[nodiscard]] AudioResult
    enumAudioEndpoints(AudioFlow flow, std::uint32_t stateMask,
                       std::unique_ptr<AudioDeviceCollection>& devices) override;
    [[nodiscard]] AudioResult
    getDefaultAudioEndpoint(AudioFlow flow, AudioRole role,
                            std::unique_ptr<AudioDevice>& device) override;
    /// Tells of what has changed since this object was made, too: nothing is lost between a look
    /// and this.
    [[nodiscard]] AudioResult registerEndpointNotificationCallback(
        const boost::shared_ptr<AudioDeviceCallback>& callback) override;
    AudioResult unregisterEndpointNotificationCallback(
        const boost::shared_ptr<AudioDeviceCallback>& callback) override;

  private:
    const boost::shared_ptr<PulseConnection> mConnection;
    const PulseSnapshotPtr mSeen;
    PulseRegistrations<PulseState::DeviceListenerPtr> mRegistrations;
};

} // namespace orbelantine
