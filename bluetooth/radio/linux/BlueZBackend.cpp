#include "bluetooth/radio/linux/BlueZBackend.h"

#include "bluetooth/radio/DriverVersions.h"
#include "bluetooth/radio/linux/BlueZSession.h"
#include "bluetooth/radio/makeBluetooth.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"

#include <atomic>
#include <future>
#include <system_error>
#include <utility>

namespace orbelantine {

using bluez::BlueZSession;

namespace {

/// What the worker does for one who waits is a few calls at the most.
constexpr auto kLongestWait = 3 * dbus::kLongestCall;

} // namespace

struct BlueZBackend::Worker {
    template <class Task>
    void post(Task task) {
        thread.post([weak = std::weak_ptr(session), task = std::move(task)]() mutable {
            if (const auto here = weak.lock())
                here->run([&] { task(*here); });
        });
    }

    /// On the worker itself at once. Waits for the task's end, for the worker's, or too long.
    template <class Task>
    void postAndWait(Task task) {
        if (thread.isCurrent())
            return task(*session);
        auto done = std::make_shared<std::promise<void>>();
        const std::future<void> end = done->get_future();
        post([done = std::move(done), task = std::move(task)](BlueZSession& here) mutable {
            task(here);
            done->set_value();
        });
        end.wait_for(kLongestWait);
    }

    IoThread thread{"BlueZIoThread"};
    std::shared_ptr<BlueZSession> session;
};

std::unique_ptr<IBluetoothImpl> makeBluetooth() {
    return std::make_unique<BlueZBackend>();
}

BlueZBackend::BlueZBackend(std::string bus, IClock& clock, DriverApi& driver)
    : mBus(std::move(bus))
    , mClock(clock)
    , mDriver(driver)
    , mRadio(std::make_shared<bluez::RadioState>()) {}

BlueZBackend::~BlueZBackend() {
    BlueZBackend::stop();
}

error_code BlueZBackend::start(bool registerIncoming) {
    const bool withAgent = registerIncoming || !onAuthenticationRequest.empty();
    auto ready = std::make_shared<std::promise<void>>();
    const std::future<void> connected = ready->get_future();
    try {
        const std::lock_guard lock(mMutex);
        if (mWorker)
            return {};
        mWorker = std::make_shared<Worker>();
        mWorker->session = std::make_shared<BlueZSession>(
            BlueZSession::Setting{mBus, mClock, withAgent, *this, mRadio, mWorker->thread.queue()});
        mWorker->post(
            [ready](BlueZSession& session) { session.connect([ready] { ready->set_value(); }); });
    } catch (const std::system_error& e) {
        ORB_LOG(kLogError, "%s() there can be no thread: %s", e.what());
        return genericError(generic::kNotEnoughMemory);
    }
    if (connected.wait_for(kLongestWait) == std::future_status::timeout)
        ORB_LOG(kLogWarning, "%s() BlueZ doesn't answer: Bluetooth is off until it does");
    return {};
}

void BlueZBackend::stop() {
    onAuthenticationRequest.disconnect_all_slots();
    std::shared_ptr<Worker> worker;
    {
        const std::lock_guard lock(mMutex);
        worker = std::exchange(mWorker, nullptr);
    }
    if (!worker)
        return;
    worker->postAndWait([](BlueZSession& session) { session.close(); });
    worker->thread.stop();
}

std::wstring BlueZBackend::getLocalName() {
    return mRadio->get().name;
}

CMacAddress BlueZBackend::getLocalAddress() {
    return mRadio->get().address;
}

error_code BlueZBackend::verifyHidDriverVersion() {
    return verifyHidDriver(mDriver, ORB_FUNCTION_NAME);
}

error_code BlueZBackend::verifyHandsfreeDriverVersion() {
    return verifyHandsfreeDriver(mDriver, ORB_FUNCTION_NAME);
}

std::int32_t BlueZBackend::getHidDriverVersion() {
    return hidDriverVersion(mDriver, ORB_FUNCTION_NAME);
}

error_code BlueZBackend::enableDiscoverable() {
    return setDiscoverable(true);
}

error_code BlueZBackend::disableDiscoverable() {
    return setDiscoverable(false);
}

bool BlueZBackend::isDiscoverable() {
    return mRadio->get().discoverable;
}

bool BlueZBackend::isBluetoothOn() {
    return mRadio->get().on;
}

void BlueZBackend::rescanCachedPeers(Completion completion) {
    post([completion = std::move(completion)](BlueZSession& session) {
        session.rescan(completion);
    });
}

void BlueZBackend::discoverOnce(Completion completion, std::uint16_t timeoutMultiplier) {
    post([completion = std::move(completion), timeoutMultiplier](BlueZSession& session) {
        session.discover(completion, timeoutMultiplier);
    });
}

void BlueZBackend::pair(const CMacAddress& address, Completion completion) {
    post([address, completion = std::move(completion)](BlueZSession& session) {
        session.pair(address, completion);
    });
}

void BlueZBackend::authRemote(const CMacAddress& address, Completion completion) {
    post([address, completion = std::move(completion)](BlueZSession& session) {
        session.approve(address, completion);
    });
}

void BlueZBackend::unpair(const CMacAddress& address, Completion completion) {
    post([address, completion = std::move(completion)](BlueZSession& session) {
        session.unpair(address, completion);
    });
}

std::shared_ptr<BlueZBackend::Worker> BlueZBackend::worker() const {
    const std::lock_guard lock(mMutex);
    return mWorker;
}

error_code BlueZBackend::setDiscoverable(bool discoverable) {
    const auto current = worker();
    if (!current)
        return genericError(generic::kNetworkDown);
    const auto result = std::make_shared<std::atomic<int>>(generic::kNetworkDown);
    current->postAndWait([result, discoverable](BlueZSession& session) {
        *result = session.setDiscoverable(discoverable).value();
    });
    return *result == 0 ? error_code() : genericError(*result);
}

template <class Task>
void BlueZBackend::post(Task task) {
    if (const auto current = worker())
        current->post(std::move(task));
}

} // namespace orbelantine
