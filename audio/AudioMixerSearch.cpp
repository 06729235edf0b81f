// Which device counts for a direction.

#include "audio/AudioMixer.h"
#include "core/common/log/Log.h"

#include <boost/algorithm/string/predicate.hpp>

#include <locale>

namespace orbelantine {

namespace {

AudioFlow flowOf(bool out) {
    return out ? AudioFlow::Render : AudioFlow::Capture;
}

bool isOneOf(const std::wstring& name, std::initializer_list<const wchar_t*> enumerators) {
    for (const wchar_t* enumerator : enumerators)
        if (boost::algorithm::iequals(name, enumerator, std::locale::classic()))
            return true;
    return false;
}

} // namespace

bool AudioMixer::isBtDevice(AudioDevice& device) {
    return isOneOf(getDeviceEnumeratorName(device), {L"BTHENUM", L"BTHHFENUM"});
}

bool AudioMixer::isNonBtDevice(AudioDevice& device) {
    return !isBtDevice(device);
}

bool AudioMixer::isUsbDevice(AudioDevice& device) {
    return isOneOf(getDeviceEnumeratorName(device), {L"USB"});
}

bool AudioMixer::doFindAudioDevice(bool out, bool& isBt) {
    ORB_LOG(kLogDebug, "%s() Looking for %s audio devices", directionName(out));
    auto& device = of(out).device;
    device.reset();
    const AudioResult found = mEnumerator->getDefaultAudioEndpoint(flowOf(out), mRole, device);
    if (hresult::isFailure(found)) {
        ORB_LOG(kLogError, "%s() No default audio device for %s. Error = 0x%08x",
                directionName(out), static_cast<unsigned>(found));
        onAudioDeviceInfo({}, kNoDevice, {}, out, DefaultDevice);
        return false;
    }
    reportDevice(out, DefaultDevice);
    if (mBtSearch) {
        // Whatever the search has left is the device.
        isBt = doFindBtDevice(out);
        return true;
    }
    isBt = false;
    if (mHeadsetConfiguration != kHeadsetIsNotLookedFor) {
        if (!isBtDevice(*device)) {
            onAudioDeviceInfo({}, {}, {}, out, TakenDevice);
        } else {
            isBt = true;
            ORB_LOG(kLogDebug, "%s() Default %s audio device '%ls' is BT", directionName(out),
                    getDeviceName(*device).c_str());
            if (mHeadsetConfiguration == kHeadsetIsAvoided)
                return doFindNonBtDevice(out);
            ORB_LOG(kLogDebug, "%s() BT headset workaround disabled");
        }
    }
    ORB_LOG(kLogDebug, "%s() Found %s audio device '%ls'", directionName(out),
            getDeviceName(*device).c_str());
    return true;
}

std::unique_ptr<AudioDeviceCollection> AudioMixer::enumerate(const char* caller, bool out,
                                                             std::uint32_t stateMask) {
    std::unique_ptr<AudioDeviceCollection> devices;
    const AudioResult listed = mEnumerator->enumAudioEndpoints(flowOf(out), stateMask, devices);
    if (!hresult::isFailure(listed))
        return devices;
    ORB_LOG_TEXT(kLogError, "%s() Unable to enumerate audio devices for %s. Error = 0x%08x", caller,
                 directionName(out), static_cast<unsigned>(listed));
    return nullptr;
}

bool AudioMixer::doFindBtDevice(bool out) {
    const auto devices =
        enumerate(ORB_FUNCTION_NAME, out, kAudioDeviceActive | kAudioDeviceDisabled);
    if (!devices)
        return false;
    if (!doFindDeviceOfType(out, *devices, isBtDevice)) {
        ORB_LOG(kLogDebug, "%s() Could not find BT audio %s device", directionName(out));
        return false;
    }
    AudioDevice& device = *of(out).device;
    std::uint32_t state = 0;
    const AudioResult got = device.getState(state);
    if (hresult::isFailure(got))
        ORB_LOG(kLogError, "%s() Unable to get %s audio device state. Error = 0x%08x",
                directionName(out), static_cast<unsigned>(got));
    ORB_LOG(kLogDebug, "%s() Found BT %s device '%ls', state=0x%01x", directionName(out),
            getDeviceName(device).c_str(), state);
    return true;
}

bool AudioMixer::doFindNonBtDevice(bool out) {
    const auto devices = enumerate(ORB_FUNCTION_NAME, out, kAudioDeviceActive);
    if (!devices)
        return false;
    auto& device = of(out).device;
    if (doFindDeviceOfType(out, *devices, isUsbDevice)) {
        ORB_LOG(kLogDebug, "%s() Found usb %s device '%ls'", directionName(out),
                getDeviceName(*device).c_str());
        reportDevice(out, TakenDevice);
        return true;
    }
    if (doFindDeviceOfType(out, *devices, isNonBtDevice)) {
        ORB_LOG(kLogDebug, "%s() Found %ls %s device '%ls'",
                getDeviceEnumeratorName(*device).c_str(), directionName(out),
                getDeviceName(*device).c_str());
        reportDevice(out, TakenDevice);
        return true;
    }
    ORB_LOG(kLogWarning, "%s() Could not find non-BT audio %s device", directionName(out));
    onAudioDeviceInfo({}, kNoDevice, {}, out, TakenDevice);
    device.reset();
    return false;
}

bool AudioMixer::doFindDeviceOfType(bool out, AudioDeviceCollection& devices,
                                    DevicePredicate predicate) {
    std::uint32_t count = 0;
    const AudioResult counted = devices.getCount(count);
    if (hresult::isFailure(counted)) {
        ORB_LOG(kLogError, "%s() Unable to get devices count for %s. Error = 0x%08x",
                directionName(out), static_cast<unsigned>(counted));
        return false;
    }
    auto& device = of(out).device;
    for (std::uint32_t index = 0; index < count; ++index) {
        device.reset();
        const AudioResult got = devices.item(index, device);
        if (hresult::isFailure(got)) {
            ORB_LOG(kLogError, "%s() Unable to get device %d/%d for %s. Error = 0x%08x",
                    static_cast<int>(index), static_cast<int>(count), directionName(out),
                    static_cast<unsigned>(got));
            return false;
        }
        if (predicate(*device)) {
            ORB_LOG(kLogDebug, "%s() Found device (%d/%d) for %s", static_cast<int>(index),
                    static_cast<int>(count), directionName(out));
            return true;
        }
    }
    return false;
}

void AudioMixer::reportDevice(bool out, AudioDeviceInfoType type) {
    AudioDevice& device = *of(out).device;
    const std::wstring details = getDeviceDetails(device);
    const std::wstring enumerator = getDeviceEnumeratorName(device);
    onAudioDeviceInfo(getDeviceName(device), enumerator, details, out, type);
}

} // namespace orbelantine
