#pragma once

#include "audio/AudioApi.h"
#include "audio/AudioState.h"
#include "core/common/config/SettingsApi.h"
#include "core/common/run/Completion.h"

#include <boost/signals2/signal.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

namespace orbelantine {

class AudioMixer;

/// What the computer can hear and say: which directions of sound have a device, which is mute, and
/// whether a Bluetooth headset is there. A direction is a bool, true for playback.
///
/// Any thread may call. Signals come on the worker of this object, `onMute` also on threads of the
/// sound system; slots must not wait. Destruction stops; one signal may still be under way then.
class AudioDevicesState {
  private:
    struct Facts;

    const boost::shared_ptr<Facts> mFacts;

  public:
    /// A direction is in effect mute: at volume 0, or muted. Told at each change of volume or mute
    /// state as long as that is so; a return to sound isn't told.
    boost::signals2::signal<void(bool out, bool mute)>& onMute;
    /// Whether a Bluetooth headset is there, told each time a direction has been looked up.
    boost::signals2::signal<void(bool pluggedIn)>& onBtHeadsetPluggedIn;
    /// Which directions have a device, told each time a direction has been looked up and once more
    /// at the end of the start, changed or not.
    boost::signals2::signal<void(AudioState state)>& onStateChanged;

    explicit AudioDevicesState(AudioApi& audio = AudioApi::system(),
                               SettingsApi& settings = SettingsApi::system());
    virtual ~AudioDevicesState();
    AudioDevicesState(const AudioDevicesState&) = delete;
    AudioDevicesState& operator=(const AudioDevicesState&) = delete;

    /// Looks the devices up and follows the system from then on; returns at once. `callback` isn't
    /// called: the signals tell.
    void start(const Completion& callback);
    /// Waits for the worker; no signal begins after it, but for an `onMute` that is under way.
    /// Throws Exception in a slot, where it would wait for itself.
    void stop();

    /// AudioAvailable before the first look-up.
    [[nodiscard]] AudioState getAudioState() const;
    [[nodiscard]] bool isBtHeadsetPluggedIn() const;

  private:
    [[nodiscard]] bool isInSlot() const;
    void disconnectMixer();
    static void audioDeviceChanged(Facts& facts, const error_code& ec, bool out, bool btHeadset);
    static void updateState(Facts& facts, const error_code& ec);
    static void muteDeFactoChanged(Facts& facts, bool out, int volume, bool mute);

    boost::shared_ptr<AudioMixer> mMixer;
};

} // namespace orbelantine
