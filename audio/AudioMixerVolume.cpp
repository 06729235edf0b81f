// Volume and mute of the device that a direction has.

#include "audio/AudioMixer.h"
#include "audio/AudioVolumeCallback.h"
#include "core/common/log/Log.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <cmath>
#include <utility>

namespace orbelantine {

namespace {

const char* notUnless(bool mute) {
    return mute ? "" : "not ";
}

} // namespace

std::int32_t AudioLevels::scaled(float level) const {
    return static_cast<std::int32_t>(std::lround(static_cast<float>(maxVolume) * level));
}

boost::shared_ptr<AudioVolumeCallback> AudioMixer::makeVolumeCallback(bool out) {
    auto callback = boost::make_shared<AudioVolumeCallback>();
    callback->onNotified.connect(
        [levels = mLevels, out](const AudioVolumeNotification* notification) {
            onVolumeNotification(*levels, out, *notification);
        });
    return callback;
}

void AudioMixer::onVolumeNotification(AudioLevels& levels, bool out,
                                      const AudioVolumeNotification& notification) {
    auto& direction = levels.of(out);
    const std::int32_t volume = levels.scaled(notification.masterVolume);
    direction.volume = volume;
    levels.onVolumeChanged(out, volume);
    if (direction.mute.exchange(notification.muted) == notification.muted)
        return;
    if (out)
        ORB_LOG(kLogDebug, "%s() Now speakers are %smute", notUnless(notification.muted));
    else
        ORB_LOG(kLogDebug, "%s() Now microphone is %smute", notUnless(notification.muted));
    levels.onMuteChanged(out, notification.muted);
}

bool AudioMixer::doOpenVolumeDevice(bool out) {
    auto& direction = of(out);
    if (!direction.device) {
        ORB_LOG(kLogError, "%s() No %s device", directionName(out));
        return false;
    }
    const auto failed = [out](const char* call, AudioResult result) {
        if (hresult::isFailure(result))
            ORB_LOG(kLogError, "%s() %s failed for %s device. Error = 0x%08x", call,
                    directionName(out), static_cast<unsigned>(result));
        return hresult::isFailure(result);
    };
    std::unique_ptr<AudioControl> control;
    if (failed("Activate", direction.device->activate(control)) ||
        failed("RegisterControlChangeNotify",
               control->registerControlChangeNotify(direction.callback)))
        return false;
    float level = 0;
    bool mute = false;
    if (failed("GetMasterVolumeLevelScalar", control->getMasterVolumeLevelScalar(level)) ||
        failed("GetMute", control->getMute(mute))) {
        control->unregisterControlChangeNotify(direction.callback);
        return false;
    }
    const std::int32_t volume = mLevels->scaled(level);
    // Told before it is stored: whoever hears of the volume still sees the mute state of before.
    onVolumeChanged(out, volume);
    ORB_LOG(kLogDebug, "%s() Opened device %s (and registered). Volume is %d, %smute",
            directionName(out), volume, notUnless(mute));
    onMuteChanged(out, mute);
    direction.control = std::move(control);
    mLevels->of(out).volume = volume;
    mLevels->of(out).mute = mute;
    return true;
}

void AudioMixer::doCloseVolumeDevice(bool out) {
    auto& direction = of(out);
    if (!direction.control)
        return;
    direction.control->unregisterControlChangeNotify(direction.callback);
    ORB_LOG(kLogDebug, "%s() Unregistered device %s", directionName(out));
    direction.control.reset();
    ORB_LOG(kLogDebug, "%s() Released device %s", directionName(out));
}

void AudioMixer::doSetVolume(bool out, int volume) {
    const auto& control = of(out).control;
    if (!control) {
        ORB_LOG(kLogDebug, "%s() No volume device %s", directionName(out));
        return;
    }
    if (volume == mLevels->of(out).volume)
        return;
    const float level = static_cast<float>(volume) / static_cast<float>(mLevels->maxVolume);
    const AudioResult set = control->setMasterVolumeLevelScalar(level);
    if (hresult::isFailure(set))
        ORB_LOG(kLogError, "%s() Failed to set volume to %d for device %s. Error = 0x%08x", volume,
                directionName(out), static_cast<unsigned>(set));
}

void AudioMixer::doSetMute(bool out, bool mute) {
    const auto& control = of(out).control;
    if (!control) {
        ORB_LOG(kLogDebug, "%s() No volume device %s", directionName(out));
        return;
    }
    if (mute == mLevels->of(out).mute)
        return;
    const AudioResult set = control->setMute(mute);
    if (hresult::isFailure(set))
        ORB_LOG(kLogError, "%s() Failed to set mute to %d for device %s. Error = 0x%08x",
                static_cast<int>(mute), directionName(out), static_cast<unsigned>(set));
    else
        ORB_LOG(kLogDebug, "%s() Device %s state changed to %smute", directionName(out),
                notUnless(mute));
}

std::wstring AudioMixer::doGetDefaultAudioDeviceId(bool out) {
    const auto& device = of(out).device;
    std::wstring id;
    const AudioResult got = device ? device->getId(id) : hresult::kInvalidArgument;
    if (!hresult::isFailure(got))
        return id;
    ORB_LOG(kLogError, "%s() Failed to get default device %s id. Error = 0x%08x",
            directionName(out), static_cast<unsigned>(got));
    return {};
}

} // namespace orbelantine
