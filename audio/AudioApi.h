#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>
#include <memory>
#include <string>

namespace orbelantine {

class AudioDeviceCallback;
class AudioVolumeCallback;

/// What a call of the sound system answers: an HRESULT, negative for a failure.
using AudioResult = std::int32_t;

namespace hresult {
inline constexpr AudioResult kOk = 0;
inline constexpr AudioResult kFail = static_cast<AudioResult>(0x80004005);
inline constexpr AudioResult kInvalidArgument = static_cast<AudioResult>(0x80070057);
inline constexpr AudioResult kNotFound = static_cast<AudioResult>(0x80070490);
inline constexpr AudioResult kDeviceInvalidated = static_cast<AudioResult>(0x88890004);

[[nodiscard]] constexpr bool isFailure(AudioResult result) {
    return result < 0;
}
} // namespace hresult

/// Whether a direction plays or records; Core Audio's `EDataFlow`.
enum class AudioFlow : std::int32_t { Render = 0, Capture = 1 };

/// What a default device is the default for; Core Audio's `ERole`.
enum class AudioRole : std::int32_t { Console = 0, Multimedia = 1, Communications = 2 };

/// The states of an endpoint, as bits.
inline constexpr std::uint32_t kAudioDeviceActive = 1;
inline constexpr std::uint32_t kAudioDeviceDisabled = 2;
inline constexpr std::uint32_t kAudioDeviceUnplugged = 8;

/// The facts of a device that are asked for.
enum class AudioProperty { Name, Details, EnumeratorName };

/// The calls to the computer's sound system, one operation for each, in Core Audio's shape. Outputs
/// are meaningful after a success only. What an object has made may outlive it. All but the
/// callbacks is called on the thread that called coInitialize.

/// The volume control of an endpoint. Its end unregisters what is left.
class AudioControl {
  public:
    virtual ~AudioControl() = default;
    /// `callback` is notified on a thread of the system's, under no lock, and may be once more
    /// after it is unregistered.
    [[nodiscard]] virtual AudioResult
    registerControlChangeNotify(const boost::shared_ptr<AudioVolumeCallback>& callback) = 0;
    virtual AudioResult
    unregisterControlChangeNotify(const boost::shared_ptr<AudioVolumeCallback>& callback) = 0;
    /// From 0 to 1.
    [[nodiscard]] virtual AudioResult getMasterVolumeLevelScalar(float& level) = 0;
    [[nodiscard]] virtual AudioResult setMasterVolumeLevelScalar(float level) = 0;
    [[nodiscard]] virtual AudioResult getMute(bool& mute) = 0;
    [[nodiscard]] virtual AudioResult setMute(bool mute) = 0;
};

class AudioPropertyStore {
  public:
    virtual ~AudioPropertyStore() = default;
    /// Fails for a value that is no text.
    [[nodiscard]] virtual AudioResult getValue(AudioProperty property, std::wstring& value) = 0;
};

class AudioDevice {
  public:
    virtual ~AudioDevice() = default;
    [[nodiscard]] virtual AudioResult activate(std::unique_ptr<AudioControl>& control) = 0;
    [[nodiscard]] virtual AudioResult
    openPropertyStore(std::unique_ptr<AudioPropertyStore>& properties) = 0;
    [[nodiscard]] virtual AudioResult getId(std::wstring& id) = 0;
    [[nodiscard]] virtual AudioResult getState(std::uint32_t& state) = 0;
};

class AudioDeviceCollection {
  public:
    virtual ~AudioDeviceCollection() = default;
    [[nodiscard]] virtual AudioResult getCount(std::uint32_t& count) = 0;
    [[nodiscard]] virtual AudioResult item(std::uint32_t index,
                                           std::unique_ptr<AudioDevice>& device) = 0;
};

/// Finds the devices and tells of changes. Its end unregisters what is left.
class AudioDeviceEnumerator {
  public:
    virtual ~AudioDeviceEnumerator() = default;
    /// Those in one of the states of `stateMask`.
    [[nodiscard]] virtual AudioResult
    enumAudioEndpoints(AudioFlow flow, std::uint32_t stateMask,
                       std::unique_ptr<AudioDeviceCollection>& devices) = 0;
    [[nodiscard]] virtual AudioResult
    getDefaultAudioEndpoint(AudioFlow flow, AudioRole role,
                            std::unique_ptr<AudioDevice>& device) = 0;
    /// As AudioControl's.
    [[nodiscard]] virtual AudioResult registerEndpointNotificationCallback(
        const boost::shared_ptr<AudioDeviceCallback>& callback) = 0;
    virtual AudioResult unregisterEndpointNotificationCallback(
        const boost::shared_ptr<AudioDeviceCallback>& callback) = 0;
};

class AudioApi {
  public:
    virtual ~AudioApi() = default;
    [[nodiscard]] virtual AudioResult coInitialize() = 0;
    virtual void coUninitialize() = 0;
    [[nodiscard]] virtual AudioResult
    createEnumerator(std::unique_ptr<AudioDeviceEnumerator>& enumerator) = 0;

    /// The computer's real sound system; lives until the process ends.
    static AudioApi& system();
};

} // namespace orbelantine
