#include "hid/link/HidInputClient.h"

#include "bluetooth/BluetoothPeer.h"
#include "core/common/OSAL.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/log/Log.h"
#include "core/common/run/FireSafely.h"
#include "core/common/run/WorkerThread.h"
#include "hid/link/BluetoothHIDClientManager.h"
#include "hid/link/IBluetoothHIDClient.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <utility>

namespace orbelantine {

namespace {

constexpr const char* kClientThreadName = "HidInputClientIoThread";

// The time that a phone takes to read a new record.
constexpr std::chrono::seconds kRecordPause(3);

std::string addressText(const BluetoothPeer& peer) {
    const std::wstring wide = peer.address().getStdStringAddress();
    std::string text(wide.size(), '\0');
    std::transform(wide.begin(), wide.end(), text.begin(),
                   [](wchar_t c) { return static_cast<char>(c); });
    return text;
}

/// Of an operation that this object's end takes back.
error_code takenBack() {
    return HidErrors::getErrorCode(HidErrors::InvalidState);
}

/// Starts an operation of the manager and waits for its completion, which always comes.
template <class Operation>
error_code await(Operation operation) {
    const auto promise = std::make_shared<std::promise<error_code>>();
    auto result = promise->get_future();
    operation([promise](error_code ec) { promise->set_value(ec); });
    return result.get();
}

} // namespace

HidInputClient::HidInputClient(const KVStore& settings, IClock& clock)
    : mClock(clock)
    , mWorker(kClientThreadName)
    , mManager(boost::make_shared<BluetoothHIDClientManager>(settings, clock))
    , mStore(boost::make_shared<KVStore>(settings))
    , mLife(boost::make_shared<bool>()) {
    connectManager();
}

void HidInputClient::connectManager() {
    const auto relay = [worker = mWorker.weak()](auto task) {
        if (const auto queue = worker.lock())
            queue->dispatch(std::move(task));
    };
    mManager->onDisconnected.connect(
        [this, relay](error_code ec) { relay([this, ec] { onManagerDisconnected(ec); }); });
    mManager->onConnected.connect([this, relay] { relay([this] { onManagerConnected(); }); });
}

HidInputClient::~HidInputClient() {
    teardown();
}

void HidInputClient::teardown() {
    // A worker of the manager's, or of a source's, can't wait for its own end.
    const bool onForeignWorker = onWorkerThread() && !mWorker.isCurrent();
    mWorker.stop([this] { breakLink(); });
    if (onForeignWorker)
        endElsewhere(std::move(mManager));
    mManager.reset();
    mStore.reset();
}

void HidInputClient::breakLink() {
    ++mForced;
    mManager->forceDisconnect();
    if (const auto client = mRefreshClient.load())
        client->forceDisconnect();
}

void HidInputClient::onManagerDisconnected(error_code ec) {
    ORB_LOG(kLogError, "%s() onDisconnected - %s", ec.message().c_str());
    dispatchOnDisconnected(ec);
}

void HidInputClient::onManagerConnected() {
    ORB_LOG(kLogDebug, "%s() onConnected");
    fireSafely(onConnected);
}

void HidInputClient::connect(const BluetoothPeer& peer, Completion completion) {
    mWorker.post([this, address = addressText(peer),
                  done = OnceCompletion(std::move(completion), takenBack())]() mutable {
        done(connectTo(address));
    });
}

error_code HidInputClient::connectTo(const std::string& address) {
    if (!mHidRemoteSdpRefresh.exchange(false))
        return startHID(address);
    const unsigned forced = mForced;
    const error_code refreshed = refreshHidSdpRecords(address);
    mRefreshClient.store(nullptr);
    const boost::weak_ptr<void> life = mLife;
    fireSafely(onHidSdpRefresh, refreshed);
    if (life.expired())
        return takenBack();
    // A refresh succeeds whatever becomes of the link, which tells of itself by onDisconnected.
    if (mForced == forced)
        (void)startHID(address);
    mClock.sleepFor(kRecordPause);
    return {};
}

error_code HidInputClient::startHID(const std::string& address) {
    if (const error_code ec = await([this](Completion done) { mManager->init(std::move(done)); })) {
        ORB_LOG(kLogError, "%s() failed to init HID, ec=%s", ec.message().c_str());
        return ec;
    }
    if (const error_code ec =
            await([&](Completion done) { mManager->start(address, std::move(done)); })) {
        ORB_LOG(kLogError, "%s() failed starting HID, ec=%s", ec.message().c_str());
        return ec;
    }
    ORB_LOG(kLogInfo, "%s() HID started");
    return {};
}

void HidInputClient::disconnect(Completion completion) {
    mWorker.post([this, done = OnceCompletion(std::move(completion), takenBack())]() mutable {
        done(stopHID());
    });
}

error_code HidInputClient::stopHID() {
    const error_code ec = await([this](Completion done) { mManager->cleanup(std::move(done)); });
    ORB_LOG(kLogInfo, "%s() HID disconnected");
    return ec;
}

void HidInputClient::forceDisconnect(Completion completion) {
    breakLink();
    complete(completion, error_code());
}

void HidInputClient::flush(Completion completion) {
    const auto done = boost::make_shared<OnceCompletion>(std::move(completion), takenBack());
    mWorker.post([this, done] {
        mManager->flush([worker = mWorker.weak(), done](error_code ec) {
            IoThread::post(worker, [done, ec] { (*done)(ec); });
        });
    });
}

void HidInputClient::setIdleTimeout(std::uint64_t milliseconds) {
    mWorker.post([this, milliseconds] {
        ORB_LOG(kLogDebug, "%s() ms=%llu", static_cast<unsigned long long>(milliseconds));
        mManager->setIdleTimeout(milliseconds);
    });
}

void HidInputClient::pauseConnection() {
    mWorker.post([this] { mManager->pauseConnection(); });
}

void HidInputClient::resumeConnection() {
    mWorker.post([this] { mManager->resumeConnection(Completion()); });
}

void HidInputClient::setHidRemoteSdpRefresh(bool refresh) {
    mHidRemoteSdpRefresh = refresh;
}

void HidInputClient::setInputContext(const boost::shared_ptr<IInputContext>& context) {
    ORB_LOG(kLogDebug, "%s() context=%p", static_cast<void*>(context.get()));
    mManager->setInputContext(context);
}

// Makes a peer that holds an old record drop it.
error_code HidInputClient::refreshHidSdpRecords(const std::string& address) {
    const auto client = osalCreate<IBluetoothHIDClient>(OSALFactory::instance(),
                                                        "IBluetoothHIDClient", *mStore, "");
    mRefreshClient.store(client);
    if (const error_code ec = client->connect(address)) {
        ORB_LOG(kLogDebug, "%s() failed connecting to hid=%s", ec.message().c_str());
        return ec;
    }
    const error_code ec = client->virtualCableUnplug();
    ORB_LOG(kLogDebug, "%s() virtual cable unplug result=%s", ec.message().c_str());
    client->disconnect();
    (void)client->connect(address);
    client->disconnect();
    return ec;
}

} // namespace orbelantine
