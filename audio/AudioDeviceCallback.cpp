#include "audio/AudioDeviceCallback.h"

#include "core/common/log/Log.h"

namespace orbelantine {

AudioResult AudioDeviceCallback::tellBoth() {
    onOutDevice();
    onInDevice();
    return hresult::kOk;
}

AudioResult AudioDeviceCallback::onDeviceStateChanged(const wchar_t* id, std::uint32_t state) {
    ORB_LOG(kLogDebug, "%s() Device %ls state changed to %u", id, state);
    return tellBoth();
}

AudioResult AudioDeviceCallback::onDeviceAdded(const wchar_t* id) {
    ORB_LOG(kLogDebug, "%s() Device %ls added", id);
    return tellBoth();
}

AudioResult AudioDeviceCallback::onDeviceRemoved(const wchar_t* id) {
    ORB_LOG(kLogDebug, "%s() Device %ls removed", id);
    return tellBoth();
}

AudioResult AudioDeviceCallback::onDefaultDeviceChanged(AudioFlow flow, AudioRole role,
                                                        const wchar_t* id) {
    if (role != mRole)
        return hresult::kOk;
    if (flow == AudioFlow::Render) {
        ORB_LOG(kLogDebug, "%s() Default playback device is now %ls", id);
        onOutDevice();
    } else {
        ORB_LOG(kLogDebug, "%s() Default recording device is now %ls", id);
        onInDevice();
    }
    return hresult::kOk;
}

AudioResult AudioDeviceCallback::onPropertyValueChanged() {
    return hresult::kOk;
}

} // namespace orbelantine
