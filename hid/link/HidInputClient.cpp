#include "hid/link/HidInputClient.h"

#include "bluetooth/BluetoothPeer.h"
#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "hid/link/BluetoothHIDClientManager.h"
#include "hid/link/IBluetoothHIDClient.h"

#include <boost/asio/dispatch.hpp>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <utility>

namespace orbelantine {

namespace {

constexpr const char* kThreadName = "HidInputClientIoThread";

// The time that a phone takes to read a new record.
constexpr std::chrono::seconds kRecordPause(3);

std::string addressText(const BluetoothPeer& peer) {
    const std::wstring wide = peer.address().getStdStringAddress();
    std::string text(wide.size(), '\0');
    std::transform(wide.begin(), wide.end(), text.begin(),
                   [](wchar_t c) { return static_cast<char>(c); });
    return text;
}

/// Starts an operation of the manager and waits for its completion.
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
    , mWorker(kThreadName)
    , mManager(boost::make_shared<BluetoothHIDClientManager>(settings, clock))
    , mStore(boost::make_shared<KVStore>(settings)) {
    connectManager();
}

// Teardown drops the manager before the io_service goes, so that its slots may always post.
void HidInputClient::connectManager() {
    mManager->onDisconnected.connect([this](error_code ec) {
        boost::asio::dispatch(mWorker.ioService(), [this, ec] { onManagerDisconnected(ec); });
    });
    mManager->onConnected.connect(
        [this] { boost::asio::dispatch(mWorker.ioService(), [this] { onManagerConnected(); }); });
}

HidInputClient::~HidInputClient() {
    teardown();
}

void HidInputClient::teardown() {
    mWorker.stop();
    mManager.reset();
    mStore.reset();
}

void HidInputClient::onManagerDisconnected(error_code ec) {
    ORB_LOG(kLogError, "%s() onDisconnected - %s", ec.message().c_str());
    dispatchOnDisconnected(ec);
}

void HidInputClient::onManagerConnected() {
    ORB_LOG(kLogDebug, "%s() onConnected");
    onConnected();
}

void HidInputClient::connect(const BluetoothPeer& peer, Completion completion) {
    mWorker.post([this, peer, completion = std::move(completion)] {
        complete(completion, connectTo(addressText(peer)));
    });
}

error_code HidInputClient::connectTo(const std::string& address) {
    if (!mHidRemoteSdpRefresh.exchange(false))
        return startHID(address);
    onHidSdpRefresh(refreshHidSdpRecords(address));
    // A refresh succeeds whatever becomes of the link, which tells of itself by onDisconnected.
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
    mWorker.post([this, completion = std::move(completion)] { complete(completion, stopHID()); });
}

error_code HidInputClient::stopHID() {
    const error_code ec = await([this](Completion done) { mManager->cleanup(std::move(done)); });
    ORB_LOG(kLogInfo, "%s() HID disconnected");
    return ec;
}

void HidInputClient::forceDisconnect(Completion completion) {
    if (mManager)
        mManager->forceDisconnect();
    complete(completion, error_code());
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
