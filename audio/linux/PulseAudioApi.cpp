#include "audio/linux/PulseAudioApi.h"

#include "audio/linux/PulseConnection.h"
#include "audio/linux/PulseDevices.h"
#include "core/common/log/Log.h"

#include <exception>
#include <utility>

namespace orbelantine {

PulseAudioApi::PulseAudioApi(const char* library)
    : mLibraryFile(library) {}

AudioResult PulseAudioApi::createEnumerator(std::unique_ptr<AudioDeviceEnumerator>& enumerator) {
    try {
        const auto shared = connection();
        shared->waitForServer();
        enumerator = std::make_unique<PulseEnumerator>(shared);
        return hresult::kOk;
    } catch (const std::exception& e) {
        ORB_LOG(kLogError, "%s() no connection with a sound server: %s", e.what());
        return hresult::kFail;
    }
}

boost::shared_ptr<PulseConnection> PulseAudioApi::connection() {
    const std::lock_guard lock(mMutex);
    auto shared = mConnection.lock();
    if (shared)
        return shared;
    if (!std::exchange(mLibraryTried, true))
        mLibrary = PulseLibrary::load(mLibraryFile);
    shared = PulseConnection::open(mLibrary);
    mConnection = shared;
    return shared;
}

AudioApi& AudioApi::system() {
    // Objects that it has made may be there to the end.
    static auto& api = *new PulseAudioApi(PulseLibrary::kFile);
    return api;
}

} // namespace orbelantine
