#include "core/common/probes/NetworkOptimizer.h"

#include "core/common/log/Log.h"
#include "core/common/probes/WlanNames.h"

#include <boost/nowide/convert.hpp>

#include <future>
#include <utility>

namespace orbelantine {

namespace {

constexpr std::int32_t kNoState = -1;

} // namespace

/// An open handle, with what is undone when it is closed.
class NetworkOptimizer::Session {
  public:
    Session(WlanApi& api, WlanApi::Handle handle, WlanApi::Module library,
            SetStreaming& setStreaming)
        : mApi(api)
        , mHandle(handle)
        , mLibrary(library)
        , mSetStreaming(setStreaming) {}

    ~Session() {
        if (mSetStreaming != nullptr)
            (void)mSetStreaming(false);
        if (mLibrary != nullptr)
            mApi.unload(mLibrary);
        mApi.unlisten(mHandle);
        mApi.close(mHandle);
        mSetStreaming = nullptr;
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    [[nodiscard]] WlanApi::Handle handle() const { return mHandle; }

  private:
    WlanApi& mApi;
    WlanApi::Handle mHandle;
    WlanApi::Module mLibrary;
    SetStreaming& mSetStreaming;
};

NetworkOptimizer::NetworkOptimizer(WlanApi& api)
    : mApi(api)
    , mThread("NetworkOptimizerThread") {}

NetworkOptimizer::~NetworkOptimizer() {
    // In its turn; a worker that has ended drops it.
    auto stopping = std::make_shared<std::promise<void>>();
    const std::future<void> stopped = stopping->get_future();
    mThread.post([this, stopping = std::move(stopping)] {
        doStop();
        stopping->set_value();
    });
    stopped.wait();
    mThread.stop();
    doStop();
}

void NetworkOptimizer::start() {
    mThread.post([this] { doStart(); });
}

void NetworkOptimizer::stop() {
    mThread.post([this] { doStop(); });
}

void NetworkOptimizer::doStart() {
    if (mStarted)
        return;
    mLastState = kNoState;
    WlanApi::Handle handle = nullptr;
    if (mApi.open(handle) != 0) {
        ORB_LOG(kLogError, "%s() failed to open Wlan handle");
        return;
    }
    const WlanApi::Module library = mApi.load(L"Windows.Networking.dll");
    if (library != nullptr)
        mSetStreaming =
            reinterpret_cast<SetStreaming>(mApi.procedure(library, "SetSocketMediaStreamingMode"));
    mWlan = std::make_shared<Session>(mApi, handle, library, mSetStreaming);
    (void)mApi.listen(handle, [this, queue = mThread.weak()](std::uint32_t source,
                                                             std::uint32_t code) {
        ORB_LOG_TEXT(kLogDebug, "%s() %#x: %s (%#x)\n", "orbelantine::NetworkOptimizer::notified",
                     source, wlanNotificationName(source, code), code);
        IoThread::post(queue, [this] { queryWlanStatus(); });
    });
    // Not started yet, it waits for the first notification.
    queryWlanStatus();
    mStarted = true;
}

void NetworkOptimizer::doStop() {
    if (!mStarted)
        return;
    mWlan.reset();
    mStarted = false;
}

void NetworkOptimizer::queryWlanStatus() {
    if (!mStarted)
        return;
    WlanApi::Interfaces interfaces;
    if (const WlanApi::Error error = mApi.enumerate(mWlan->handle(), interfaces); error != 0) {
        ORB_LOG(kLogError, "%s() WlanEnumInterfaces failed with error: %u", error);
        return;
    }
    ORB_LOG(kLogTrace, "%s() Num Entries: %lu", static_cast<unsigned long>(interfaces.list.size()));
    ORB_LOG(kLogTrace, "%s() Current Index: %lu", static_cast<unsigned long>(interfaces.index));
    int index = 0;
    for (const WlanApi::Interface& adapter : interfaces.list) {
        tell(index++, adapter);
        if (adapter.state != mLastState)
            apply(adapter);
    }
}

void NetworkOptimizer::tell(int index, const WlanApi::Interface& adapter) {
    const char* const function = "orbelantine::NetworkOptimizer::queryWlanStatus";
    ORB_LOG_TEXT(kLogTrace, "%s() Interface Index[%d]:\t %lu", function, index,
                 static_cast<unsigned long>(index));
    if (const std::wstring guid = mApi.textOf(adapter.guid); guid.empty())
        ORB_LOG_TEXT(kLogError, "%s() StringFromGUID2 failed", function);
    else
        ORB_LOG_TEXT(kLogTrace, "%s() InterfaceGUID[%d]: %s", function, index,
                     boost::nowide::narrow(guid).c_str());
    ORB_LOG_TEXT(kLogTrace, "%s() Interface Description[%d]: %s", function, index,
                 boost::nowide::narrow(adapter.description).c_str());
    if (const char* const state = wlanStateName(adapter.state))
        ORB_LOG_TEXT(kLogTrace, "%s() Interface State[%d]:\t %s", function, index, state);
    else
        ORB_LOG_TEXT(kLogTrace, "%s() Interface State[%d]:\t Unknown state: %ld", function, index,
                     static_cast<long>(adapter.state));
}

void NetworkOptimizer::apply(const WlanApi::Interface& adapter) {
    const char* const function = "orbelantine::NetworkOptimizer::queryWlanStatus";
    ORB_LOG_TEXT(kLogTrace, "%s() Interface state has changed, resetting wlan configuration",
                 function);
    mLastState = adapter.state;
    if (mSetStreaming != nullptr)
        (void)mSetStreaming(true);
    const auto set = [&](WlanApi::Operation operation, bool value, const char* failure) {
        const WlanApi::Error error = mApi.set(mWlan->handle(), adapter.guid, operation, value);
        if (error != 0)
            ORB_LOG_TEXT(kLogError, "%s() failed to %s %d", function, failure,
                         static_cast<int>(error));
    };
    set(WlanApi::Operation::BackgroundScan, false, "disable background scans");
    set(WlanApi::Operation::MediaStreaming, true, "enable media streaming mode");
}

} // namespace orbelantine
