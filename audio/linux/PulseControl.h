#pragma once

#include "audio/linux/PulseDevices.h"

namespace orbelantine {

/// Works as long as there is an endpoint of that name.
class PulseControl : public AudioControl {
  public:
    PulseControl(boost::shared_ptr<PulseConnection> connection, PulseKey key);

    [[nodiscard]] AudioResult
    registerControlChangeNotify(const boost::shared_ptr<AudioVolumeCallback>& callback) override;
    AudioResult
    unregisterControlChangeNotify(const boost::shared_ptr<AudioVolumeCallback>& callback) override;
    [[nodiscard]] AudioResult getMasterVolumeLevelScalar(float& level) override;
    /// Shows in the level once the server has done it.
    [[nodiscard]] AudioResult setMasterVolumeLevelScalar(float level) override;
    [[nodiscard]] AudioResult getMute(bool& mute) override;
    [[nodiscard]] AudioResult setMute(bool mute) override;

  private:
    [[nodiscard]] AudioResult read(PulseVolume& volume) const;
    [[nodiscard]] AudioResult write(const PulseWish& wish);

    const boost::shared_ptr<PulseConnection> mConnection;
    const PulseKey mKey;
    PulseRegistrations<PulseState::VolumeListenerPtr> mRegistrations;
};

} // namespace orbelantine
