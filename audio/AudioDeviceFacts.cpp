// What a device tells of itself.

#include "audio/AudioMixer.h"
#include "core/common/log/Log.h"

namespace orbelantine {

namespace {

/// The text of a property. `what` and `title` name it in the log, `caller` who asked.
std::wstring readProperty(AudioDevice& device, AudioProperty property, const char* caller,
                          const char* what, const char* title) {
    std::unique_ptr<AudioPropertyStore> properties;
    const AudioResult opened = device.openPropertyStore(properties);
    if (hresult::isFailure(opened)) {
        ORB_LOG_TEXT(kLogError, "%s() Unable to open property store. Error: 0x%x", caller,
                     static_cast<unsigned>(opened));
        return {};
    }
    std::wstring value;
    const AudioResult got = properties->getValue(property, value);
    if (hresult::isFailure(got)) {
        ORB_LOG_TEXT(kLogError, "%s() Unable to get %s. Error: 0x%x", caller, what,
                     static_cast<unsigned>(got));
        return {};
    }
    ORB_LOG_TEXT(kLogDebug, "%s() %s = '%ls'", caller, title, value.c_str());
    return value;
}

} // namespace

std::wstring AudioMixer::getDeviceName(AudioDevice& device) {
    return readProperty(device, AudioProperty::Name, ORB_FUNCTION_NAME, "device name",
                        "Device name");
}

std::wstring AudioMixer::getDeviceDetails(AudioDevice& device) {
    return readProperty(device, AudioProperty::Details, ORB_FUNCTION_NAME, "device details",
                        "Device details");
}

std::wstring AudioMixer::getDeviceEnumeratorName(AudioDevice& device) {
    return readProperty(device, AudioProperty::EnumeratorName, ORB_FUNCTION_NAME,
                        "device enumerator name", "Device enumerator name");
}

} // namespace orbelantine
