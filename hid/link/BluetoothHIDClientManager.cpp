#include "hid/link/BluetoothHIDClientManager.h"

#include "avstack/IInputFlow.h"
#include "avstack/IInputSource.h"
#include "avstack/InputContextKey.h"
#include "avstack/InputFormat.h"
#include "avstack/TemplateProxySimplified.h"
#include "core/common/OSAL.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/log/Log.h"
#include "hid/channel/WindowsBluetoothHIDDeviceClient.h"
#include "hid/link/IBluetoothHIDClient.h"
#include "hid/link/IBluetoothSDPController.h"
#include "hid/link/InputGate.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <limits>
#include <utility>

namespace orbelantine {

namespace {

constexpr const char* kThreadName = "BluetoothHIDClientManagerIoThread";
constexpr const char* kProxyName = "handleInputProxy";

// A relative mouse where the HID device is one, a keyboard, and primary pointers.
constexpr std::uint32_t kMouseType = 3;
constexpr std::uint32_t kKeyboardType = 2;
constexpr std::uint32_t kTouchType = 1;
constexpr std::uint32_t kTypeFlags = 2;

constexpr const char* kDiscardText =
    "%s() Got an input event while stopping, discarding this event";

/// For a completion that a task carries to the worker.
OnceCompletion carried(Completion completion) {
    return {std::move(completion), HidErrors::getErrorCode(HidErrors::InvalidState)};
}

} // namespace

BluetoothHIDClientManager::BluetoothHIDClientManager(const KVStore& settings, IClock& clock,
                                                     std::chrono::milliseconds inputWait)
    : mStore(boost::make_shared<KVStore>(settings))
    , mInputWait(inputWait)
    , mWorker(kThreadName)
    , mIdleTimer(clock, mWorker.ioService(), [this] { suspendConnection(); }) {
    mSdpController = osalCreate<IBluetoothSDPController>(OSALFactory::instance(),
                                                         "IBluetoothSDPController", *mStore, "");
}

BluetoothHIDClientManager::~BluetoothHIDClientManager() {
    mWorker.stop([this] { forceDisconnect(); });
    if (mInputGate)
        mInputGate->close();
}

void BluetoothHIDClientManager::init(Completion completion) {
    ORB_LOG(kLogDebug, "%s() ");
    mWorker.post([this, done = carried(std::move(completion))]() mutable { done(init()); });
}

error_code BluetoothHIDClientManager::init() {
    if (mState != kUninitialised) {
        ORB_LOG(kLogDebug, "%s() client called start when already started, state:%d", mState);
        return HidErrors::getErrorCode(HidErrors::AlreadyStarted);
    }
    if (const std::int32_t result = mSdpController->start()) {
        ORB_LOG(kLogError, "%s() SDP failed to start:%d", result);
        return HidErrors::getErrorCode(HidErrors::SdpFailure);
    }
    if (const std::int32_t result = mRecord.addTo(*mSdpController)) {
        ORB_LOG(kLogError, "%s() SDP failed to add hid record:%d", result);
        (void)mSdpController->stop();
        return HidErrors::getErrorCode(HidErrors::SdpHidRegistrationFailure);
    }
    mState = kInitialised;
    mStopping = false;
    return {};
}

void BluetoothHIDClientManager::cleanup(Completion completion) {
    ORB_LOG(kLogDebug, "%s() ");
    mStopping = true;
    mWorker.post([this, done = carried(std::move(completion))]() mutable {
        cleanup();
        done(error_code());
    });
}

void BluetoothHIDClientManager::cleanup() {
    if (mState == kUninitialised) {
        ORB_LOG(kLogDebug, "%s() already stopped");
    } else {
        cleanupConnection();
        if (const std::int32_t result = mSdpController->removeHIDDeviceRecord())
            ORB_LOG(kLogError, "%s() failed deinit sdp:%d", result);
        if (const std::int32_t result = mSdpController->stop())
            ORB_LOG(kLogError, "%s() failed deinit sdp:%d", result);
        mState = kUninitialised;
    }
    mStopping = false;
}

void BluetoothHIDClientManager::start(std::string address, Completion completion) {
    ORB_LOG(kLogDebug, "%s() ");
    mWorker.post([this, address = std::move(address),
                  done = carried(std::move(completion))]() mutable { done(start(address)); });
}

error_code BluetoothHIDClientManager::start(const std::string& address) {
    if (mState != kInitialised) {
        ORB_LOG(kLogError, "%s() not started, state=%d", mState);
        return HidErrors::getErrorCode(HidErrors::InvalidState);
    }
    KVStore store(*mStore);
    const unsigned forced = mForced;
    // The client and the source ask the driver too, each once: whoever breaks that off means all.
    createClient(store);
    mAddress = address;
    if (mForced != forced) {
        cleanupConnection();
        return brokenOff();
    }
    buildChain(store);
    mState = kStarted;
    return mForced != forced ? brokenOff() : reconnectIfNecessary();
}

error_code BluetoothHIDClientManager::brokenOff() {
    const error_code ec = HidErrors::getErrorCode(HidErrors::SocketIsDisconnected);
    onDisconnected(ec);
    return ec;
}

void BluetoothHIDClientManager::createClient(const KVStore& store) {
    const auto client =
        osalCreate<IBluetoothHIDClient>(OSALFactory::instance(), "IBluetoothHIDClient", store, "");
    mHidClient.store(client);
    client->onDisconnected.connect([this, worker = mWorker.weak()](error_code ec) {
        IoThread::post(worker, [this, ec] { clientDisconnected(ec); });
    });
}

void BluetoothHIDClientManager::buildChain(KVStore& store) {
    orbelantine::setInputContext(store, mInputContext.load());
    mInputGate = boost::make_shared<InputGate>(mWorker, mInputWait);
    mInputSource = osalCreate<IInputSource, InputFormat>(
        OSALFactory::instance(), "IInputSource", store, "",
        InputFormat(kMouseType, kKeyboardType, kTouchType, kTypeFlags));
    const auto proxy = boost::make_shared<IMediaElement::TemplateProxySimplified<IMediaElement>>(
        [this, gate = mInputGate](const Buffer& buffer, const std::string&, const Element& target) {
            handleInputProxy(this, *gate, buffer, target);
        },
        kProxyName);
    mInputSource->registerTarget(proxy);
    proxy->registerTarget(mHidClient.load());
    mInputSource->start();
}

void BluetoothHIDClientManager::stop(Completion completion) {
    ORB_LOG(kLogDebug, "%s() ");
    mWorker.post([this, done = carried(std::move(completion))]() mutable { done(stop()); });
}

error_code BluetoothHIDClientManager::stop() {
    if (mState != kStarted) {
        ORB_LOG(kLogDebug, "%s() client called disconnect while not connected, state=%d", mState);
        return HidErrors::getErrorCode(HidErrors::InvalidState);
    }
    mState = kInitialised;
    cleanupConnection();
    return {};
}

void BluetoothHIDClientManager::cleanupConnection() {
    mIdleTimer.cancel();
    if (mInputSource) {
        // A source may wait for a thread of its own that waits for this one.
        mInputGate->close();
        mInputSource->stop();
        mInputSource.reset();
        mInputGate.reset();
    }
    ORB_LOG(kLogDebug, "%s() after stopping input provider");
    if (const auto client = mHidClient.load()) {
        client->disconnect();
        mHidClient.store(nullptr);
    }
}

void BluetoothHIDClientManager::clientDisconnected(error_code ec) {
    if (mState != kUninitialised)
        mState = kInitialised;
    cleanupConnection();
    onDisconnected(ec);
}

error_code BluetoothHIDClientManager::reconnectIfNecessary() {
    const auto client = mHidClient.load();
    if (mState != kStarted || !client || client->isConnected())
        return {};
    ORB_LOG(kLogDebug, "%s() need to reconnect to hid");
    const error_code ec = client->connect(mAddress);
    ORB_LOG(kLogDebug, "%s() hid connect ec=%s", ec.message().c_str());
    if (ec)
        onDisconnected(ec);
    else
        onConnected();
    restartIdleTimer();
    return ec;
}

void BluetoothHIDClientManager::suspendConnection() {
    const auto client = mHidClient.load();
    if (mState != kStarted || !client || !client->isConnected())
        return;
    ORB_LOG(kLogDebug, "%s() idle timer ran out");
    client->disconnect();
    ORB_LOG(kLogDebug, "%s() disconnected");
    mInputSource->refresh();
}

void BluetoothHIDClientManager::setIdleTimeout(std::uint64_t milliseconds) {
    ORB_LOG(kLogDebug, "%s() ");
    mWorker.post([this, milliseconds] { applyIdleTimeout(milliseconds); });
}

void BluetoothHIDClientManager::applyIdleTimeout(std::uint64_t milliseconds) {
    mIdleEnabled = milliseconds != 0;
    if (!mIdleEnabled) {
        mIdleTimer.cancel();
        return;
    }
    constexpr std::uint64_t kLongest = std::numeric_limits<std::int64_t>::max();
    mIdleTimeout = std::chrono::milliseconds(std::min(milliseconds, kLongest));
    if (mState == kStarted)
        restartIdleTimer();
}

void BluetoothHIDClientManager::restartIdleTimer() {
    if (mIdleEnabled)
        mIdleTimer.restart(mIdleTimeout);
}

void BluetoothHIDClientManager::pauseConnection() {
    ORB_LOG(kLogDebug, "%s() ");
    mWorker.post([this] {
        suspendConnection();
        mIdleTimer.cancel();
    });
}

void BluetoothHIDClientManager::resumeConnection(Completion completion) {
    ORB_LOG(kLogDebug, "%s() ");
    mWorker.post(
        [this, done = carried(std::move(completion))]() mutable { done(resumeConnection()); });
}

error_code BluetoothHIDClientManager::resumeConnection() {
    if (mStopping) {
        ORB_LOG(kLogDebug, "%s() stopping");
        return {};
    }
    return reconnectIfNecessary();
}

void BluetoothHIDClientManager::flush(Completion completion) {
    mWorker.post(
        [this, done = carried(std::move(completion))]() mutable { flush(std::move(done)); });
}

// What the sources have delivered may still be queued here, where an input thread waits no longer.
void BluetoothHIDClientManager::flush(OnceCompletion done) {
    const auto behindSources = boost::make_shared<OnceCompletion>(std::move(done));
    const boost::shared_ptr<void> mark(nullptr, [worker = mWorker.weak(), behindSources](void*) {
        IoThread::post(worker, [behindSources] { (*behindSources)(error_code()); });
    });
    if (auto* flow = dynamic_cast<IInputFlow*>(mInputSource.get()))
        flow->follow(mark);
}

void BluetoothHIDClientManager::forceDisconnect() {
    ++mForced;
    // The client may only be in the making.
    WindowsBluetoothHIDDeviceClient::breakQueries();
    if (const auto client = mHidClient.load())
        client->forceDisconnect();
}

void BluetoothHIDClientManager::setInputContext(const boost::shared_ptr<IInputContext>& context) {
    mInputContext.store(context);
}

void BluetoothHIDClientManager::handleInputProxy(BluetoothHIDClientManager* manager,
                                                 InputGate& gate, const Buffer& buffer,
                                                 const Element& target) {
    switch (gate.pass(
        [=](const InputGate& passed) { manager->handleInputProxy(passed, buffer, target); })) {
    case InputGate::Outcome::TimedOut:
        ORB_LOG(kLogError, "%s() waited too much, returning");
        break;
    case InputGate::Outcome::Closed:
        ORB_LOG(kLogWarning, kDiscardText);
        break;
    case InputGate::Outcome::Passed:
        break;
    }
}

void BluetoothHIDClientManager::handleInputProxy(const InputGate& gate, const Buffer& buffer,
                                                 const Element& target) {
    // A late event of a chain that was taken down has nowhere to go either.
    if (mStopping || &gate != mInputGate.get()) {
        ORB_LOG(kLogWarning, kDiscardText);
        return;
    }
    if (mState != kStarted || reconnectIfNecessary())
        return;
    restartIdleTimer();
    target->onFrame(buffer);
}

} // namespace orbelantine
