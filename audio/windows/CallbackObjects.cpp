#include "audio/windows/CallbackObjects.h"

namespace orbelantine {

HRESULT VolumeCallbackObject::OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data) {
    if (data == nullptr)
        return callback()->onNotify(nullptr);
    const AudioVolumeNotification notification{data->bMuted != FALSE, data->fMasterVolume};
    return callback()->onNotify(&notification);
}

HRESULT DeviceCallbackObject::OnDeviceStateChanged(LPCWSTR id, DWORD state) {
    return callback()->onDeviceStateChanged(id, state);
}

HRESULT DeviceCallbackObject::OnDeviceAdded(LPCWSTR id) {
    return callback()->onDeviceAdded(id);
}

HRESULT DeviceCallbackObject::OnDeviceRemoved(LPCWSTR id) {
    return callback()->onDeviceRemoved(id);
}

HRESULT DeviceCallbackObject::OnDefaultDeviceChanged(EDataFlow flow, ERole role, LPCWSTR id) {
    return callback()->onDefaultDeviceChanged(static_cast<AudioFlow>(flow),
                                              static_cast<AudioRole>(role), id);
}

HRESULT DeviceCallbackObject::OnPropertyValueChanged(LPCWSTR, const PROPERTYKEY) {
    return callback()->onPropertyValueChanged();
}

} // namespace orbelantine
