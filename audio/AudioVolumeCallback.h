#pragma once

#include "audio/AudioApi.h"

#include <boost/signals2/signal.hpp>

namespace orbelantine {

/// What a control tells of a change.
struct AudioVolumeNotification {
    bool muted;
    float masterVolume; // from 0 to 1
};

/// Takes the notifications of one control, on the thread of the system's that brings them.
class AudioVolumeCallback {
  public:
    boost::signals2::signal<void(const AudioVolumeNotification*)> onNotified;

    /// hresult::kInvalidArgument without data.
    AudioResult onNotify(const AudioVolumeNotification* data);

    /// Whether the calling thread is one that a notification is being told on: the system waits for
    /// it, so it must not wait for the system.
    [[nodiscard]] static bool isNotifying();
};

} // namespace orbelantine
