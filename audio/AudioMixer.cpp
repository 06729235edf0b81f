#include "audio/AudioMixer.h"

#include "audio/AudioDeviceCallback.h"
#include "audio/AudioVolumeCallback.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/log/Log.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <cassert>
#include <future>
#include <utility>

namespace orbelantine {

namespace {

constexpr const char* kMixerThreadName = "AudioMixerIoThread";
constexpr const char* kHeadsetSetting = "BtHeadsetCfg";
constexpr std::uint32_t kHeadsetConfigurations = 3;

/// The default value where the worker has ended before it came to the task.
template <class Result>
Result waitForMixer(std::future<Result> result) {
    try {
        return result.get();
    } catch (const std::future_error&) {
        return Result();
    }
}

} // namespace

AudioMixer::AudioMixer(AudioRole role, bool btSearch, AudioApi& audio, SettingsApi& settings)
    : mLevels(boost::make_shared<AudioLevels>())
    , onVolumeChanged(mLevels->onVolumeChanged)
    , onMuteChanged(mLevels->onMuteChanged)
    , mRole(role)
    , mBtSearch(btSearch)
    , mAudio(audio)
    , mSettings(settings)
    , mWorker(kMixerThreadName) {}

AudioMixer::~AudioMixer() {
    stop();
    mWorker.stop();
}

void AudioMixer::start(unsigned maxVolume, Completion completion) {
    const auto dropped = AudioMixerErrors::getErrorCode(AudioMixerErrors::AudioDeviceMonitoring);
    mWorker.post(
        [this, maxVolume, done = OnceCompletion(std::move(completion), dropped)]() mutable {
            done(doStart(maxVolume));
        });
}

void AudioMixer::stop() {
    assert(!isOnWorker() && !AudioVolumeCallback::isNotifying());
    std::packaged_task<void()> task([this] { doStop(); });
    auto done = task.get_future();
    mWorker.post(std::move(task));
    waitForMixer(std::move(done));
}

std::wstring AudioMixer::getDefaultAudioDeviceId(bool out) {
    std::packaged_task<std::wstring()> task([this, out] { return doGetDefaultAudioDeviceId(out); });
    auto id = task.get_future();
    mWorker.queue()->dispatch(std::move(task));
    return waitForMixer(std::move(id));
}

void AudioMixer::setVolume(bool out, int volume) {
    mWorker.post([this, out, volume] { doSetVolume(out, volume); });
}

void AudioMixer::setMute(bool out, bool mute) {
    mWorker.post([this, out, mute] { doSetMute(out, mute); });
}

error_code AudioMixer::doStart(unsigned maxVolume) {
    readHeadsetConfiguration();
    mLevels->maxVolume = maxVolume;
    mOut.callback = makeVolumeCallback(true);
    mIn.callback = makeVolumeCallback(false);
    mInitResult = mAudio.coInitialize();
    if (hresult::isFailure(mInitResult)) {
        ORB_LOG(kLogError, "%s() CoInitialize failed. Error = 0x%08x",
                static_cast<unsigned>(mInitResult));
        return AudioMixerErrors::getErrorCode(AudioMixerErrors::CoInit);
    }
    const AudioResult created = mAudio.createEnumerator(mEnumerator);
    if (hresult::isFailure(created)) {
        ORB_LOG(kLogError, "%s() Failed to create device enumerator. Error = 0x%08x",
                static_cast<unsigned>(created));
        return AudioMixerErrors::getErrorCode(AudioMixerErrors::Enumerator);
    }
    return doStartAudioDeviceMonitoring();
}

void AudioMixer::doStop() {
    onVolumeChanged.disconnect_all_slots();
    onMuteChanged.disconnect_all_slots();
    onAudioDeviceChanged.disconnect_all_slots();
    onAudioDeviceInfo.disconnect_all_slots();
    doCloseVolumeDevice(true);
    doCloseVolumeDevice(false);
    doStopAudioDeviceMonitoring();
    mEnumerator.reset();
    if (!hresult::isFailure(mInitResult)) {
        mAudio.coUninitialize();
        mInitResult = hresult::kFail;
    }
    mOut.callback.reset();
    mIn.callback.reset();
}

void AudioMixer::readHeadsetConfiguration() {
    std::uint32_t configuration = 0;
    if (mSettings.getInteger(kHeadsetSetting, configuration) != win32::kErrorSuccess ||
        configuration >= kHeadsetConfigurations)
        configuration = 0;
    mHeadsetConfiguration = configuration;
    ORB_LOG(kLogDebug, "%s() BtHeadsetCfg = %d", static_cast<int>(configuration));
}

error_code AudioMixer::doStartAudioDeviceMonitoring() {
    doOnAudioDeviceChanged(false);
    doOnAudioDeviceChanged(true);
    // A notification may come when the mixer has gone: then there is no worker either.
    const auto lookUp = [this, worker = mWorker.weak()](bool out) {
        IoThread::post(worker, [this, out] { onDeviceNotification(out); });
    };
    mDeviceCallback = boost::make_shared<AudioDeviceCallback>(mRole);
    mDeviceCallback->onInDevice.connect([lookUp] { lookUp(false); });
    mDeviceCallback->onOutDevice.connect([lookUp] { lookUp(true); });
    const AudioResult registered =
        mEnumerator->registerEndpointNotificationCallback(mDeviceCallback);
    if (hresult::isFailure(registered)) {
        ORB_LOG(kLogError, "%s() Cannot monitor audio devices!!! Error = 0x%08x",
                static_cast<unsigned>(registered));
        mDeviceCallback.reset();
        doStopAudioDeviceMonitoring();
        return AudioMixerErrors::getErrorCode(AudioMixerErrors::AudioDeviceMonitoring);
    }
    mMonitoring = true;
    return deviceCode();
}

void AudioMixer::doStopAudioDeviceMonitoring() {
    if (mDeviceCallback && mEnumerator)
        mEnumerator->unregisterEndpointNotificationCallback(mDeviceCallback);
    mOut.device.reset();
    mIn.device.reset();
    mDeviceCallback.reset();
    mMonitoring = false;
}

void AudioMixer::onDeviceNotification(bool out) {
    if (!mMonitoring) {
        ORB_LOG(kLogDebug, "%s() No longer monitoring audio %s devices", directionName(out));
        return;
    }
    doCloseVolumeDevice(out);
    of(out).device.reset();
    doOnAudioDeviceChanged(out);
}

error_code AudioMixer::deviceCode() const {
    if (!mOut.control && !mIn.control)
        return AudioMixerErrors::getErrorCode(AudioMixerErrors::NoAudioInOutDevice);
    if (!mIn.control)
        return AudioMixerErrors::getErrorCode(AudioMixerErrors::NoAudioInDevice);
    if (!mOut.control)
        return AudioMixerErrors::getErrorCode(AudioMixerErrors::NoAudioOutDevice);
    return {};
}

void AudioMixer::doOnAudioDeviceChanged(bool out) {
    bool isBt = false;
    if (!doFindAudioDevice(out, isBt))
        ORB_LOG(kLogError, "%s() Unable to find audio %s device", directionName(out));
    else if (!doOpenVolumeDevice(out))
        ORB_LOG(kLogError, "%s() Failed to open %s device", directionName(out));
    onAudioDeviceChanged(deviceCode(), out, isBt && mHeadsetConfiguration == kHeadsetIsReported);
}

} // namespace orbelantine
