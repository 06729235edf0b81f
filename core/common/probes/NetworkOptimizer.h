#pragma once

#include "core/common/config/INetworkOptimizer.h"
#include "core/common/probes/WlanApi.h"
#include "core/common/run/IoThread.h"

#include <cstdint>
#include <memory>

namespace orbelantine {

/// Keeps wireless adapters from scanning in the background while it is started, and has them stream
/// media: again whenever an adapter's state differs from the one last seen. A failure is logged,
/// and nothing else comes of it. All work is done on the object's own thread, in the order of the
/// calls.
class NetworkOptimizer final : public INetworkOptimizer {
  public:
    /// Over the system's own services, on Windows alone. Throws std::system_error if there can be
    /// no thread.
    NetworkOptimizer();
    explicit NetworkOptimizer(WlanApi& api);
    /// As stop, and waits for it.
    ~NetworkOptimizer() override;

    void start() override;
    void stop() override;

  private:
    /// SetSocketMediaStreamingMode
    using SetStreaming = std::int32_t (*)(bool enabled);

    class Session;

    void doStart();
    void doStop();
    void queryWlanStatus();
    void apply(const WlanApi::Interface& adapter);
    void tell(int index, const WlanApi::Interface& adapter);

    WlanApi& mApi;
    // Of the worker alone.
    std::shared_ptr<Session> mWlan;
    SetStreaming mSetStreaming = nullptr;
    std::int32_t mLastState = -1;
    bool mStarted = false;
    // Last: its tasks use the rest.
    IoThread mThread;
};

} // namespace orbelantine
