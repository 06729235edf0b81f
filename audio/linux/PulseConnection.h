#pragma once

#include "audio/linux/PulseClient.h"
#include "audio/linux/PulseState.h"
#include "core/common/run/IoThread.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <chrono>
#include <memory>
#include <thread>

namespace orbelantine {

/// The connection that all objects of the sound system share, with its two workers: one talks with
/// the server and tells of devices, the other tells of volumes. Ends with the last of the objects,
/// on any thread, and waits for no callback.
class PulseConnection {
  public:
    /// Throws std::system_error or std::bad_alloc. `library` is null where the machine lacks it:
    /// there are no devices then.
    [[nodiscard]] static boost::shared_ptr<PulseConnection>
    open(std::shared_ptr<const PulseLibrary> library);
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    [[nodiscard]] PulseState& state() const { return *mState; }

    /// Waits until it is known what devices there are; no longer than a server may take, which
    /// counts as none until it answers.
    void waitForServer() const;

    /// Returns at once.
    void wish(const PulseKey& key, const PulseWish& wish);
    /// A device listener has been added that may know less than the state.
    void tellDevicesSoon();

  private:
    explicit PulseConnection(std::shared_ptr<const PulseLibrary> library);

    static void endSafely(PulseConnection* connection);
    void endNotifier();

    const std::shared_ptr<const PulseLibrary> mLibrary;
    const std::chrono::steady_clock::time_point mOpened = std::chrono::steady_clock::now();
    boost::shared_ptr<IoThread> mNotifier;
    const boost::shared_ptr<PulseState> mState;
    std::unique_ptr<PulseClient> mClient;
    std::thread mThread;
};

} // namespace orbelantine
