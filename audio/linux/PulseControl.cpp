#include "audio/linux/PulseControl.h"

namespace orbelantine {

PulseControl::PulseControl(boost::shared_ptr<PulseConnection> connection, PulseKey key)
    : mConnection(std::move(connection))
    , mKey(std::move(key))
    , mRegistrations(mConnection->state()) {}

AudioResult
PulseControl::registerControlChangeNotify(const boost::shared_ptr<AudioVolumeCallback>& callback) {
    if (!callback)
        return hresult::kInvalidArgument;
    auto listener = mConnection->state().addListener(callback, mKey);
    if (!listener)
        return hresult::kDeviceInvalidated;
    mRegistrations.add(std::move(listener));
    return hresult::kOk;
}

AudioResult PulseControl::unregisterControlChangeNotify(
    const boost::shared_ptr<AudioVolumeCallback>& callback) {
    return mRegistrations.remove(callback);
}

AudioResult PulseControl::read(PulseVolume& volume) const {
    const PulseSnapshotPtr snapshot = mConnection->state().snapshot();
    const PulseEndpoint* const endpoint = snapshot->find(mKey);
    if (endpoint == nullptr)
        return hresult::kDeviceInvalidated;
    volume = endpoint->volume;
    return hresult::kOk;
}

AudioResult PulseControl::write(const PulseWish& wish) {
    PulseVolume ignored;
    const AudioResult result = read(ignored);
    if (result == hresult::kOk)
        mConnection->wish(mKey, wish);
    return result;
}

AudioResult PulseControl::getMasterVolumeLevelScalar(float& level) {
    PulseVolume volume;
    const AudioResult result = read(volume);
    level = volume.level;
    return result;
}

AudioResult PulseControl::getMute(bool& mute) {
    PulseVolume volume;
    const AudioResult result = read(volume);
    mute = volume.mute;
    return result;
}

AudioResult PulseControl::setMasterVolumeLevelScalar(float level) {
    const bool isScalar = level >= 0 && level <= 1;
    return isScalar ? write({.level = level, .mute = {}}) : hresult::kInvalidArgument;
}

AudioResult PulseControl::setMute(bool mute) {
    return write({.level = {}, .mute = mute});
}

} // namespace orbelantine
