#include "audio/AudioVolumeCallback.h"

namespace orbelantine {

namespace {

thread_local int notificationsOnThread = 0;

struct Notifying {
    Notifying() { ++notificationsOnThread; }

    ~Notifying() { --notificationsOnThread; }

    Notifying(const Notifying&) = delete;
    Notifying& operator=(const Notifying&) = delete;
};

} // namespace

AudioResult AudioVolumeCallback::onNotify(const AudioVolumeNotification* data) {
    if (data == nullptr)
        return hresult::kInvalidArgument;
    const Notifying notifying;
    onNotified(data);
    return hresult::kOk;
}

bool AudioVolumeCallback::isNotifying() {
    return notificationsOnThread > 0;
}

} // namespace orbelantine
