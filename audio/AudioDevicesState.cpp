#include "audio/AudioDevicesState.h"

#include "audio/AudioMixer.h"
#include "audio/AudioVolumeCallback.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/Exception.h"
#include "core/common/log/Log.h"
#include "core/common/run/WorkerThread.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <boost/throw_exception.hpp>

#include <atomic>
#include <cstdint>
#include <utility>

namespace orbelantine {

namespace {

constexpr unsigned kMaxVolume = 15;
constexpr std::uint32_t kHeadsetIn = 1;
constexpr std::uint32_t kHeadsetOut = 2;

AudioState stateOf(const error_code& ec) {
    const auto is = [&ec](AudioMixerErrors::Code code) {
        return ec == AudioMixerErrors::getErrorCode(code);
    };
    if (is(AudioMixerErrors::NoAudioInDevice))
        return NoAudioIn;
    if (is(AudioMixerErrors::NoAudioOutDevice))
        return NoAudioOut;
    return is(AudioMixerErrors::NoAudioInOutDevice) ? NoAudioInOut : AudioAvailable;
}

} // namespace

/// Shared with the mixer's slots, of which one may outlast this object.
struct AudioDevicesState::Facts {
    boost::signals2::signal<void(bool, bool)> onMute;
    boost::signals2::signal<void(bool)> onBtHeadsetPluggedIn;
    boost::signals2::signal<void(AudioState)> onStateChanged;
    std::atomic<std::uint32_t> headsets = 0;
    std::atomic<AudioState> state = AudioAvailable;
};

AudioDevicesState::AudioDevicesState(AudioApi& audio, SettingsApi& settings)
    : mFacts(boost::make_shared<Facts>())
    , onMute(mFacts->onMute)
    , onBtHeadsetPluggedIn(mFacts->onBtHeadsetPluggedIn)
    , onStateChanged(mFacts->onStateChanged)
    , mMixer(boost::make_shared<AudioMixer>(AudioRole::Console, true, audio, settings)) {}

AudioDevicesState::~AudioDevicesState() {
    disconnectMixer();
    onMute.disconnect_all_slots();
    onBtHeadsetPluggedIn.disconnect_all_slots();
    onStateChanged.disconnect_all_slots();
    if (isInSlot())
        endElsewhere(std::move(mMixer));
}

void AudioDevicesState::start(const Completion& /*callback*/) {
    AudioLevels& levels = *mMixer->levels();
    mMixer->onVolumeChanged.connect([facts = mFacts, &levels](bool out, int volume) {
        muteDeFactoChanged(*facts, out, volume, levels.of(out).mute);
    });
    mMixer->onMuteChanged.connect([facts = mFacts, &levels](bool out, bool mute) {
        muteDeFactoChanged(*facts, out, levels.of(out).volume, mute);
    });
    mMixer->onAudioDeviceChanged.connect(
        [facts = mFacts](const error_code& ec, bool out, bool btHeadset) {
            audioDeviceChanged(*facts, ec, out, btHeadset);
        });
    mMixer->start(kMaxVolume, [facts = mFacts](const error_code& ec) {
        if (ec.value() >= AudioMixerErrors::CoInit)
            ORB_LOG(kLogError, "%s() Mixer start error %d", ec.value());
        updateState(*facts, ec);
    });
}

void AudioDevicesState::stop() {
    if (isInSlot())
        BOOST_THROW_EXCEPTION(Exception("This would wait for the thread that it is called on: "
                                        "stop the audio devices outside their callbacks, on "
                                        "another thread"));
    disconnectMixer();
    mMixer->stop();
}

AudioState AudioDevicesState::getAudioState() const {
    return mFacts->state;
}

bool AudioDevicesState::isBtHeadsetPluggedIn() const {
    return mFacts->headsets != 0;
}

bool AudioDevicesState::isInSlot() const {
    return mMixer->isOnWorker() || AudioVolumeCallback::isNotifying();
}

void AudioDevicesState::disconnectMixer() {
    mMixer->onVolumeChanged.disconnect_all_slots();
    mMixer->onMuteChanged.disconnect_all_slots();
    mMixer->onAudioDeviceChanged.disconnect_all_slots();
}

void AudioDevicesState::audioDeviceChanged(Facts& facts, const error_code& ec, bool out,
                                           bool btHeadset) {
    const std::uint32_t bit = out ? kHeadsetOut : kHeadsetIn;
    if (btHeadset)
        facts.headsets |= bit;
    else
        facts.headsets &= ~bit;
    facts.onBtHeadsetPluggedIn(facts.headsets != 0);
    updateState(facts, ec);
}

void AudioDevicesState::updateState(Facts& facts, const error_code& ec) {
    if (ec.value() < AudioMixerErrors::CoInit)
        facts.state = stateOf(ec);
    facts.onStateChanged(facts.state);
}

void AudioDevicesState::muteDeFactoChanged(Facts& facts, bool out, int volume, bool mute) {
    // A return to sound isn't told, and silence is told anew at each change.
    if (volume != 0 && !mute)
        return;
    ORB_LOG(kLogDebug, "%s() Device %s is now effectively mute", out ? "out" : "in");
    facts.onMute(out, true);
}

} // namespace orbelantine
