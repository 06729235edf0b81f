#include "bluetooth/radio/BluetoothWindows.h"

#include "bluetooth/ApiHandle.h"
#include "bluetooth/radio/DriverVersions.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"
#include "core/common/run/FireSafely.h"
#include "core/common/run/IDelayTimer.h"

#include <boost/asio/error.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

namespace orbelantine {

namespace {

constexpr const char* kBackendThreadName = "BluetoothWindowsIoThread";

// A request that comes sooner after the start waits so long for the platform's notification.
constexpr std::chrono::milliseconds kPairingUiDelay(500);
constexpr const wchar_t* kTrayWindowClass = L"BluetoothNotificationAreaIconWindowClass";
constexpr std::uintptr_t kTrayPairingCommand = 2142;

using RadioSearch = ApiHandle<BluetoothApi, &BluetoothApi::bluetoothFindRadioClose>;
using Radio = ApiHandle<BluetoothApi, &BluetoothApi::closeHandle>;
using DeviceSearch = ApiHandle<BluetoothApi, &BluetoothApi::bluetoothFindDeviceClose>;

error_code platformError(BluetoothApi::Error error) {
    return genericError(static_cast<int>(error));
}

std::wstring wideName(const BluetoothApi::Name& name) {
    return {name.begin(), std::ranges::find(name, u'\0')};
}

/// Runs the operation and completes with what it gives. Dropped with the worker.
template <class Operation>
auto completing(Completion completion, Operation operation) {
    return [completion = std::move(completion), operation] { complete(completion, operation()); };
}

} // namespace

BluetoothWindows::BluetoothWindows(BluetoothApi& api, DriverApi& driver, IClock& clock)
    : mApi(api)
    , mDriver(driver)
    , mClock(clock)
    , mLife(boost::make_shared<bool>()) {}

BluetoothWindows::~BluetoothWindows() {
    stop();
}

error_code BluetoothWindows::start(bool incoming) {
    end();
    if (incoming)
        if (const error_code ec = registerIncoming()) {
            ORB_LOG(kLogError, "%s: unable to register for incoming auth notifications. Error: %d",
                    ec.value());
            return ec;
        }
    const error_code ec = startWorker(incoming);
    if (ec)
        end();
    return ec;
}

error_code BluetoothWindows::registerIncoming() {
    mListener.emplace([this](const auto& params) { onBluetoothAuth(params); });
    const Error error = mApi.bluetoothRegisterForAuthenticationEx(
        {}, &AuthenticationListener::onRequest, mListener->context(), mAuthHandle);
    if (!error)
        return {};
    ORB_LOG(kLogError, "%s: BluetoothRegisterForAuthenticationEx error. Error: %d",
            static_cast<int>(error));
    mListener.reset();
    return platformError(error);
}

error_code BluetoothWindows::startWorker(bool incoming) {
    try {
        mIoThread = std::make_unique<IoThread>(kBackendThreadName);
    } catch (const std::system_error& e) {
        ORB_LOG(kLogError, "%s() no thread can be started: %s", e.what());
        return {e.code().value(), boost::system::generic_category()};
    }
    const std::lock_guard lock(mMutex);
    mRegisterIncoming = incoming;
    mPairingUiFrom = laterBy(mClock.now(), kPairingUiDelay);
    mWorker = mIoThread->weak();
    return {};
}

void BluetoothWindows::stop() {
    onAuthenticationRequest.disconnect_all_slots();
    end();
}

void BluetoothWindows::end() {
    if (mAuthHandle != BluetoothApi::kNull)
        (void)unregisterIncoming();
    // What waits for the pairing UI is cancelled with the thread.
    mIoThread.reset();
}

error_code BluetoothWindows::unregisterIncoming() {
    if (mAuthHandle == BluetoothApi::kNull) {
        ORB_LOG(kLogError, "%s: not registered");
        return genericError(generic::kNotPermitted);
    }
    mApi.bluetoothUnregisterAuthentication(std::exchange(mAuthHandle, BluetoothApi::kNull));
    mListener.reset();
    return {};
}

std::wstring BluetoothWindows::getLocalName() {
    const std::lock_guard lock(mMutex);
    return wideName(mRadioInfo.name);
}

CMacAddress BluetoothWindows::getLocalAddress() {
    const std::lock_guard lock(mMutex);
    return CMacAddress(mRadioInfo.address);
}

error_code BluetoothWindows::verifyHidDriverVersion() {
    return verifyHidDriver(mDriver, ORB_FUNCTION_NAME);
}

error_code BluetoothWindows::verifyHandsfreeDriverVersion() {
    return verifyHandsfreeDriver(mDriver, ORB_FUNCTION_NAME);
}

std::int32_t BluetoothWindows::getHidDriverVersion() {
    return hidDriverVersion(mDriver, ORB_FUNCTION_NAME);
}

error_code BluetoothWindows::enableDiscoverable() {
    return setDiscoverable(true, ORB_FUNCTION_NAME);
}

error_code BluetoothWindows::disableDiscoverable() {
    return setDiscoverable(false, ORB_FUNCTION_NAME);
}

error_code BluetoothWindows::setDiscoverable(bool enabled, const char* function) {
    if (mApi.bluetoothEnableDiscovery(enabled))
        return {};
    ORB_LOG_TEXT(kLogError, "%s: BluetoothEnableDiscovery error", function);
    return genericError(generic::kNotPermitted);
}

bool BluetoothWindows::isDiscoverable() {
    return mApi.bluetoothIsDiscoverable();
}

bool BluetoothWindows::isBluetoothOn() {
    return getLocalRadioInfo().value() != int{win32::kErrorNoMoreItems};
}

error_code BluetoothWindows::getLocalRadioInfo() {
    Radio radio(mApi);
    RadioSearch search(mApi);
    if (const Error error = mApi.bluetoothFindFirstRadio({}, search.out(), radio.out())) {
        ORB_LOG(kLogDebug, "%s: BluetoothFindFirstRadio failed. Error: %d",
                static_cast<int>(error));
        return platformError(error);
    }
    BluetoothApi::RadioInfo info;
    if (const Error error = mApi.bluetoothGetRadioInfo(radio.get(), info)) {
        ORB_LOG(kLogError, "%s: unable to get Bluetooth radio info. Error: %d",
                static_cast<int>(error));
        return platformError(error);
    }
    const std::lock_guard lock(mMutex);
    mRadioInfo = info;
    return {};
}

void BluetoothWindows::rescanCachedPeers(Completion completion) {
    post(std::move(completion), [this] { return windowsFindPeers(Search::Known, 0); });
}

void BluetoothWindows::discoverOnce(Completion completion, std::uint16_t timeoutMultiplier) {
    post(std::move(completion), [this, multiplier = static_cast<std::uint8_t>(timeoutMultiplier)] {
        return windowsFindPeers(Search::Unknown, multiplier);
    });
}

error_code BluetoothWindows::windowsFindPeers(Search search, std::uint8_t timeoutMultiplier) {
    if (const error_code ec = getLocalRadioInfo()) {
        if (ec.value() == int{win32::kErrorNoMoreItems}) {
            ORB_LOG(kLogInfo, "%s() Bluetooth is not available");
            return genericError(generic::kNetworkDown);
        }
        ORB_LOG(kLogError, "%s: unable to get local radio info. Error: %d", ec.value());
        return ec;
    }
    const bool known = search == Search::Known;
    BluetoothApi::DeviceSearchParams params;
    params.returnAuthenticated = params.returnRemembered = known;
    params.returnUnknown = params.issueInquiry = !known;
    params.timeoutMultiplier = timeoutMultiplier;

    BluetoothApi& api = mApi;
    DeviceSearch found(api);
    BluetoothApi::DeviceInfo info;
    if (const Error error = api.bluetoothFindFirstDevice(params, info, found.out())) {
        if (error == win32::kErrorNoMoreItems)
            return {};
        ORB_LOG(kLogError, "%s: BluetoothFindFirstDevice error. Error: %d",
                static_cast<int>(error));
        return platformError(error);
    }
    const boost::weak_ptr<void> life = mLife;
    do {
        fireSafely(onPeerFound, CMacAddress(info.address), wideName(info.name), info.deviceClass);
    } while (!life.expired() && api.bluetoothFindNextDevice(found.get(), info));
    return {};
}

void BluetoothWindows::pair(const CMacAddress& address, Completion completion) {
    dispatch(std::move(completion), [this, address]() -> error_code {
        BluetoothApi::DeviceInfo info;
        info.address = address.getUllAddress();
        const Error error =
            mApi.bluetoothAuthenticateDeviceEx(info, BluetoothApi::kMitmProtectionRequiredBonding);
        if (!error)
            return {};
        const error_code ec = lastError();
        ORB_LOG(kLogError, "%s: BluetoothAuthenticateDeviceEx error. Error: %d",
                static_cast<int>(error));
        return ec;
    });
}

void BluetoothWindows::authRemote(const CMacAddress& address, Completion completion) {
    dispatch(std::move(completion), [this, address]() -> error_code {
        BluetoothApi::AuthenticationResponse response;
        {
            const std::lock_guard lock(mMutex);
            response.address = mLastAuth.device.address;
            response.method = mLastAuth.method;
            response.number = mLastAuth.number;
        }
        if (address != CMacAddress(response.address)) {
            ORB_LOG(kLogError, "%s: MAC address mismatch");
            return genericError(generic::kBadAddress);
        }
        const Error error = mApi.bluetoothSendAuthenticationResponseEx(response);
        if (!error)
            return {};
        const error_code ec = lastError();
        ORB_LOG(kLogError, "%s: BluetoothSendAuthenticationResponseEx error. Error: %d",
                static_cast<int>(error));
        return ec;
    });
}

void BluetoothWindows::unpair(const CMacAddress& address, Completion completion) {
    dispatch(std::move(completion), [this, address]() -> error_code {
        const Error error = mApi.bluetoothRemoveDevice(address.getUllAddress());
        if (!error)
            return {};
        const error_code ec = lastError();
        ORB_LOG(kLogError, "%s: BluetoothRemoveDevice error. Error: %d", static_cast<int>(error));
        return ec;
    });
}

void BluetoothWindows::onBluetoothAuth(const BluetoothApi::AuthenticationParams& params) {
    Worker worker;
    IClock::TimePoint due;
    {
        const std::lock_guard lock(mMutex);
        mLastAuth = params;
        if (mRegisterIncoming)
            worker = mWorker;
        due = mPairingUiFrom;
    }
    const auto onTimer = [this](error_code ec) {
        if (ec)
            ORB_LOG(kLogError, "%s: error = %s", ec.message().c_str());
        else
            showPairingUi();
    };
    if (const auto queue = worker.lock())
        queue->post([this, due, &ioService = queue->ioService,
                     done = boost::make_shared<OnceCompletion>(
                         onTimer, boost::asio::error::operation_aborted)] {
            mClock.makeTimer(ioService, due)->asyncWait([done](const error_code& ec) {
                (*done)(ec);
            });
        });
    fireSafely(onAuthenticationRequest, CMacAddress(params.device.address),
               wideName(params.device.name), params.device.deviceClass);
}

error_code BluetoothWindows::showPairingUi() {
    const BluetoothApi::Handle window = mApi.findWindow(kTrayWindowClass);
    if (window == BluetoothApi::kNull) {
        ORB_LOG(kLogError, "%s: unable to find BT tray window");
        return genericError(generic::kNoSuchWindow);
    }
    const Error error = mApi.postMessage(window, BluetoothApi::kWmCommand, kTrayPairingCommand, 0);
    return error ? platformError(error) : error_code();
}

/// What a call's failure completes with, whatever the call has returned; asked before anything else
/// is called.
error_code BluetoothWindows::lastError() const {
    return platformError(mApi.lastError());
}

BluetoothWindows::Worker BluetoothWindows::worker() const {
    const std::lock_guard lock(mMutex);
    return mWorker;
}

template <class Operation>
void BluetoothWindows::post(Completion completion, Operation operation) {
    IoThread::post(worker(), completing(std::move(completion), std::move(operation)));
}

template <class Operation>
void BluetoothWindows::dispatch(Completion completion, Operation operation) {
    auto task = completing(std::move(completion), std::move(operation));
    if (const auto queue = worker().lock())
        queue->dispatch(std::move(task));
}

} // namespace orbelantine
