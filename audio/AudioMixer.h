#pragma once

#include "audio/AudioApi.h"
#include "core/common/config/SettingsApi.h"
#include "core/common/run/Completion.h"
#include "core/common/run/IoThread.h"

#include <boost/signals2/signal.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace orbelantine {

class AudioDeviceCallback;
class AudioVolumeCallback;
struct AudioVolumeNotification;

/// The last known volumes and mute states, and those who hear of changes. Shared with the
/// notifications, of which one may still be under way when the mixer has gone.
struct AudioLevels {
    struct Direction {
        std::atomic<std::int32_t> volume = 0;
        std::atomic<bool> mute = false;
    };

    boost::signals2::signal<void(bool out, int volume)> onVolumeChanged;
    boost::signals2::signal<void(bool out, bool mute)> onMuteChanged;
    std::atomic<std::uint32_t> maxVolume = 0;
    Direction in;
    Direction out;

    [[nodiscard]] Direction& of(bool isOut) { return isOut ? out : in; }

    /// On the scale of 0 to maxVolume, rounded.
    [[nodiscard]] std::int32_t scaled(float level) const;
};

/// Watches one playback and one recording device: decides which counts, keeps its volume and mute
/// state, follows the system, and can set both. A direction is a bool, true for out (playback).
///
/// Any thread may call. A worker, "AudioMixerIoThread", owns all objects of the sound system and
/// tells of devices; volumes and mute states are told on the worker when a device is opened, and
/// after that on whatever thread the system notifies on. A slot must not block.
class AudioMixer {
  public:
    /// Whether a report is about the system's default device, or about the one that is taken
    /// instead of it, or none.
    enum AudioDeviceInfoType : std::int32_t { DefaultDevice = 0, TakenDevice = 1 };

  private:
    const boost::shared_ptr<AudioLevels> mLevels;

  public:
    /// A device's volume on the scale given to start.
    boost::signals2::signal<void(bool out, int volume)>& onVolumeChanged;
    boost::signals2::signal<void(bool out, bool mute)>& onMuteChanged;
    boost::signals2::signal<void(const std::wstring& name, const std::wstring& enumerator,
                                 const std::wstring& details, bool out, AudioDeviceInfoType type)>
        onAudioDeviceInfo;
    /// A direction was looked up anew: the code of AudioMixerErrors tells which ones lack a device.
    boost::signals2::signal<void(const error_code& ec, bool out, bool btHeadset)>
        onAudioDeviceChanged;

    /// With `btSearch` a Bluetooth device is taken wherever there is one.
    AudioMixer(AudioRole role, bool btSearch, AudioApi& audio = AudioApi::system(),
               SettingsApi& settings = SettingsApi::system());
    /// Stops. Not on the worker.
    virtual ~AudioMixer();
    AudioMixer(const AudioMixer&) = delete;
    AudioMixer& operator=(const AudioMixer&) = delete;

    /// Opens a device for each direction and follows the system from then on. `completion` comes on
    /// the worker: a missing device is told of as by onAudioDeviceChanged and is no reason to stop;
    /// CoInit, Enumerator and AudioDeviceMonitoring are.
    void start(unsigned maxVolume, Completion completion);
    /// Drops every slot and closes the devices, and waits for that. Not on the worker, nor on a
    /// thread of the system's that a slot is called on.
    void stop();

    /// Return at once; a failure is logged.
    void setVolume(bool out, int volume);
    void setMute(bool out, bool mute);
    /// The id of the device that a direction has, empty where it has none. Waits for the worker,
    /// unless it is called there.
    [[nodiscard]] std::wstring getDefaultAudioDeviceId(bool out);

    /// The last known state.
    [[nodiscard]] const boost::shared_ptr<AudioLevels>& levels() const { return mLevels; }

    [[nodiscard]] bool isOnWorker() const { return mWorker.isCurrent(); }

  private:
    /// What the mixer has of the sound system for one direction.
    struct Direction {
        std::unique_ptr<AudioDevice> device;
        std::unique_ptr<AudioControl> control;
        boost::shared_ptr<AudioVolumeCallback> callback;
    };

    // The values of "BtHeadsetCfg".
    static constexpr std::uint32_t kHeadsetIsReported = 0;
    static constexpr std::uint32_t kHeadsetIsAvoided = 1;
    static constexpr std::uint32_t kHeadsetIsNotLookedFor = 2;

    static constexpr const wchar_t* kNoDevice = L"No device";

    using DevicePredicate = bool (*)(AudioDevice& device);

    [[nodiscard]] static const char* directionName(bool out) { return out ? "out" : "in"; }

    [[nodiscard]] Direction& of(bool out) { return out ? mOut : mIn; }

    [[nodiscard]] error_code doStart(unsigned maxVolume);
    void doStop();
    [[nodiscard]] error_code doStartAudioDeviceMonitoring();
    void doStopAudioDeviceMonitoring();
    void readHeadsetConfiguration();
    [[nodiscard]] boost::shared_ptr<AudioVolumeCallback> makeVolumeCallback(bool out);
    void onDeviceNotification(bool out);
    [[nodiscard]] error_code deviceCode() const;
    void doOnAudioDeviceChanged(bool out);

    // Which device counts.
    [[nodiscard]] bool doFindAudioDevice(bool out, bool& isBt);
    [[nodiscard]] bool doFindBtDevice(bool out);
    [[nodiscard]] bool doFindNonBtDevice(bool out);
    [[nodiscard]] bool doFindDeviceOfType(bool out, AudioDeviceCollection& devices,
                                          DevicePredicate predicate);
    [[nodiscard]] std::unique_ptr<AudioDeviceCollection> enumerate(const char* caller, bool out,
                                                                   std::uint32_t stateMask);
    void reportDevice(bool out, AudioDeviceInfoType type);
    [[nodiscard]] static bool isBtDevice(AudioDevice& device);
    [[nodiscard]] static bool isNonBtDevice(AudioDevice& device);
    [[nodiscard]] static bool isUsbDevice(AudioDevice& device);
    [[nodiscard]] static std::wstring getDeviceName(AudioDevice& device);
    [[nodiscard]] static std::wstring getDeviceDetails(AudioDevice& device);
    [[nodiscard]] static std::wstring getDeviceEnumeratorName(AudioDevice& device);

    // Volume and mute.
    static void onVolumeNotification(AudioLevels& levels, bool out,
                                     const AudioVolumeNotification& notification);
    [[nodiscard]] bool doOpenVolumeDevice(bool out);
    void doCloseVolumeDevice(bool out);
    void doSetVolume(bool out, int volume);
    void doSetMute(bool out, bool mute);
    [[nodiscard]] std::wstring doGetDefaultAudioDeviceId(bool out);

    const AudioRole mRole;
    const bool mBtSearch;
    AudioApi& mAudio;
    SettingsApi& mSettings;

    // The worker's.
    AudioResult mInitResult = hresult::kFail;
    std::unique_ptr<AudioDeviceEnumerator> mEnumerator;
    Direction mOut;
    Direction mIn;
    boost::shared_ptr<AudioDeviceCallback> mDeviceCallback;
    bool mMonitoring = false;
    std::uint32_t mHeadsetConfiguration = 0;

    IoThread mWorker;
};

} // namespace orbelantine
