#pragma once

#include "audio/AudioApi.h"

#include <boost/smart_ptr/weak_ptr.hpp>

#include <memory>
#include <mutex>

namespace orbelantine {

class PulseConnection;
struct PulseLibrary;

/// The sound server of PulseAudio, or PipeWire in its place. No call waits for it but the making of
/// the first enumerator, which does so for a bounded time. Any thread may call.
class PulseAudioApi : public AudioApi {
  public:
    /// `library`: the file name of PulseAudio's client library.
    explicit PulseAudioApi(const char* library);

    [[nodiscard]] AudioResult coInitialize() override { return hresult::kOk; }

    void coUninitialize() override {}

    [[nodiscard]] AudioResult
    createEnumerator(std::unique_ptr<AudioDeviceEnumerator>& enumerator) override;

  private:
    [[nodiscard]] boost::shared_ptr<PulseConnection> connection();

    const char* const mLibraryFile;
    std::mutex mMutex;
    std::shared_ptr<const PulseLibrary> mLibrary;
    bool mLibraryTried = false;
    boost::weak_ptr<PulseConnection> mConnection;
};

} // namespace orbelantine
