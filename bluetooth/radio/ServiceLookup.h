#pragma once

#include "bluetooth/radio/NameSpaceApi.h"
#include "core/common/errors/ErrorCode.h"
#include "core/common/run/WindowsEvent.h"
#include "core/common/types/CMacAddress.h"

#include <boost/function/function3.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

namespace orbelantine {

/// Asks a peer for one service record by its class, on a thread of its own. One thread at a time
/// may call.
class ServiceLookup {
  public:
    using Record = std::vector<std::uint8_t>;
    /// The service's address and its record; both are zero and empty where the peer has none, and
    /// the record where the peer tells no more than the address.
    using Callback = boost::function<void(error_code, const SockaddrBth&, const Record&)>;

    explicit ServiceLookup(NameSpaceApi& api = NameSpaceApi::system());
    /// As stop.
    virtual ~ServiceLookup();
    ServiceLookup(const ServiceLookup&) = delete;
    ServiceLookup& operator=(const ServiceLookup&) = delete;

    /// The callback comes once, on the worker, unless stop() comes first. Once before each stop():
    /// a second start is the end of the process. Throws std::system_error if there can be no
    /// thread.
    void start(const CMacAddress& address, const Guid& serviceClass, Callback callback);
    /// Returns when the call in progress has ended. On the worker itself it throws
    /// std::system_error.
    void stop();

  private:
    [[nodiscard]] error_code lookupService(const CMacAddress& address, const Guid& serviceClass,
                                           SockaddrBth& service, Record& record);

    NameSpaceApi& mApi;
    std::mutex mStarting;
    std::thread mThread;
    boost::shared_ptr<WindowsEvent> mInterrupt;
};

/// Beside the services that are published.
inline constexpr const wchar_t* kHfAudio = L"HfAudio";

/// Publishes a service record of the local radio; its handle, or 0 on failure.
[[nodiscard]] NameSpaceApi::Handle
publishBluetoothService(const ServiceLookup::Record& record,
                        NameSpaceApi& api = NameSpaceApi::system());
/// 0, or -1 on failure.
NameSpaceApi::Result withdrawBluetoothService(NameSpaceApi::Handle record,
                                              NameSpaceApi& api = NameSpaceApi::system());

} // namespace orbelantine
