#include "bluetooth/radio/BluetoothWindows.h"

#include "bluetooth/DriverProtocol.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/GenericError.h"
#include "core/common/run/WorkerThread.h"
#include "tests/bluetooth/FakeBluetoothApi.h"
#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <boost/asio/error.hpp>
#include <gtest/gtest.h>

#include <future>
#include <system_error>
#include <thread>
#include <tuple>

namespace orbelantine::test {
namespace {

using Backend = BluetoothWindows;
using std::chrono::milliseconds;

constexpr std::uint64_t kAsker = 0x001A7DDA7113;
const CMacAddress kAskerAddress(kAsker);
const std::string kBackendName = "orbelantine::BluetoothWindows::";

/// A device as a signal tells it, and the thread.
using Sighting = std::tuple<std::uint64_t, std::wstring, unsigned long, std::thread::id>;

class WindowsBackend : public testing::Test {
  protected:
    WindowsBackend() {
        mBackend->onPeerFound.connect(noting(mFound));
        mBackend->onAuthenticationRequest.connect(noting(mRequests));
    }

    static IBluetoothImpl::PeerSignal::slot_type noting(std::vector<Sighting>& sightings) {
        return [&](const CMacAddress& address, const std::wstring& name, unsigned long type) {
            sightings.emplace_back(address.getUllAddress(), name, type, std::this_thread::get_id());
        };
    }

    void start(bool incoming = false) { ASSERT_EQ(mBackend->start(incoming), error_code()); }

    /// What an operation completes with, and where.
    template <class Operation>
    error_code completed(Operation operation) {
        std::promise<error_code> done;
        operation([&](error_code ec) {
            mCompletedOn = std::this_thread::get_id();
            done.set_value(ec);
        });
        return done.get_future().get();
    }

    error_code rescan() {
        return completed([&](auto done) { mBackend->rescanCachedPeers(done); });
    }

    error_code discover(std::uint16_t multiplier) {
        return completed([&](auto done) { mBackend->discoverOnce(done, multiplier); });
    }

    error_code perform(void (Backend::*operation)(const CMacAddress&, Completion)) {
        return completed([&](auto done) { (mBackend.get()->*operation)(kAskerAddress, done); });
    }

    FakeBluetoothApi mApi;
    FakeDriverApi mDriver;
    HandClock mClock;
    std::vector<Sighting> mFound;
    std::vector<Sighting> mRequests;
    std::thread::id mCompletedOn;
    std::unique_ptr<Backend> mBackend = std::make_unique<Backend>(mApi, mDriver, mClock);
};

TEST_F(WindowsBackend, RescanAsksForKnownDevicesAndDiscoveryForTheOthers) {
    start();
    mApi.simulateDevice(kAsker, u"Phone", 0x5A020C);
    mApi.simulateDevice(0xFF0000000001, std::u16string(248, u'x'), 7);
    EXPECT_EQ(rescan(), error_code());
    const std::thread::id worker = mCompletedOn;
    EXPECT_NE(worker, std::this_thread::get_id());
    const std::vector<Sighting> both = {{kAsker, L"Phone", 0x5A020C, worker},
                                        {0xFF0000000001, std::wstring(248, L'x'), 7, worker}};
    EXPECT_EQ(mFound, both);
    EXPECT_EQ(discover(3), error_code());
    EXPECT_EQ(mFound.size(), 4u);
    EXPECT_EQ(mCompletedOn, worker);
    EXPECT_EQ(mApi.asked(), (Texts{"BluetoothFindFirstDevice 40 1 1 0 0 0 0 0",
                                   "BluetoothFindFirstDevice 40 0 0 1 0 1 3 0"}));
    EXPECT_TRUE(mApi.held().empty());
}

TEST_F(WindowsBackend, EachEndOfASearchGivesItsCodeAndTellsWhyAndLeavesNothingHeld) {
    const std::string noRadio = "debug getLocalRadioInfo: BluetoothFindFirstRadio failed. Error: ";
    const std::string inSearch = "error windowsFindPeers: unable to get local radio info. Error: ";

    const struct {
        const char* call;
        BluetoothApi::Error error;
        error_code expected;
        Texts lines;
    } cases[] = {
        {"BluetoothFindFirstRadio",
         259,
         genericError(116),
         {noRadio + "259", "info windowsFindPeers() Bluetooth is not available"}},
        {"BluetoothFindFirstRadio", 5, genericError(5), {noRadio + "5", inSearch + "5"}},
        {"BluetoothGetRadioInfo",
         1306,
         genericError(1306),
         {"error getLocalRadioInfo: unable to get Bluetooth radio info. Error: 1306",
          inSearch + "1306"}},
        {"BluetoothFindFirstDevice", 259, {}, {}},
        {"BluetoothFindFirstDevice",
         87,
         genericError(87),
         {"error windowsFindPeers: BluetoothFindFirstDevice error. Error: 87"}},
    };

    start();
    mApi.simulateDevice(kAsker, u"Phone", 0);
    for (const auto& [call, error, expected, lines] : cases) {
        mApi.failures = {{call, {error, error}}};
        CapturedLog log(kLogDebug, kBackendName);
        EXPECT_EQ(discover(3), expected) << call << error;
        EXPECT_EQ(log.told(), lines) << call << error;
        EXPECT_TRUE(mApi.held().empty()) << call << error;
    }
    EXPECT_TRUE(mFound.empty());
}

TEST_F(WindowsBackend, RadioIsOnUnlessThereIsNoneAndIsToldAsLastRead) {
    EXPECT_EQ(mBackend->getLocalName(), L"");
    mApi.simulateRadio(0x112233445566, u"Desk");
    EXPECT_TRUE(mBackend->isBluetoothOn());
    for (const BluetoothApi::Error error : {120, 259}) {
        mApi.failures["BluetoothFindFirstRadio"] = {error, error};
        EXPECT_EQ(mBackend->isBluetoothOn(), error != 259);
    }
    EXPECT_EQ(mBackend->getLocalName(), L"Desk");
    EXPECT_EQ(mBackend->getLocalAddress(), CMacAddress(L"11:22:33:44:55:66"));
}

TEST_F(WindowsBackend, OperationsOnAPeerLogWhatTheCallReturnsAndCompleteWithWhatItLeaves) {
    const struct {
        void (Backend::*operation)(const CMacAddress&, Completion);
        const char* name;
        std::string call;
        const char* arguments;
    } cases[] = {
        {&Backend::pair, "pair", "BluetoothAuthenticateDeviceEx", " 560 113780617491 3"},
        {&Backend::authRemote, "authRemote", "BluetoothSendAuthenticationResponseEx",
         " 113780617491 5 123456 0"},
        {&Backend::unpair, "unpair", "BluetoothRemoveDevice", " 113780617491"},
    };

    start(true);
    EXPECT_EQ(perform(&Backend::authRemote), genericError(14)) << "nobody asked";
    ASSERT_TRUE(mApi.simulateRequest(kAsker, 5, 123456));
    (void)mApi.asked();

    for (const auto& [operation, name, call, arguments] : cases) {
        EXPECT_EQ(perform(operation), error_code()) << name;
        EXPECT_EQ(mApi.asked(), (Texts{call + arguments}));
        mApi.failures[call] = {1244, 31};
        CapturedLog log(kLogDebug, kBackendName);
        EXPECT_EQ(perform(operation), genericError(31)) << name;
        EXPECT_EQ(log.told(),
                  (Texts{std::string("error ") + name + ": " + call + " error. Error: 1244"}));
        (void)mApi.asked();
    }
    ASSERT_TRUE(mApi.simulateRequest(kAsker + 1));
    (void)mApi.asked();
    CapturedLog log(kLogDebug, kBackendName);
    EXPECT_EQ(perform(&Backend::authRemote), genericError(14)) << "another has asked since";
    EXPECT_EQ(log.told(), Texts{"error authRemote: MAC address mismatch"});
    EXPECT_TRUE(mApi.asked().empty());
}

TEST_F(WindowsBackend, CallOnTheWorkerRunsAtOnceAndASearchWaits) {
    start();
    Texts order;
    std::promise<void> searched;
    mBackend->rescanCachedPeers([&](error_code) {
        mBackend->rescanCachedPeers([&](error_code) {
            order.push_back("searched");
            searched.set_value();
        });
        mBackend->unpair(kAskerAddress, [&](error_code) { order.push_back("unpaired"); });
        order.push_back("asked");
    });
    searched.get_future().wait();
    EXPECT_EQ(order, (Texts{"unpaired", "asked", "searched"}));
}

TEST_F(WindowsBackend, RequestIsToldWhereItComesAndOpensThePairingUiHalfASecondAfterTheStart) {
    const std::string search = "BluetoothFindFirstDevice 40 1 1 0 0 0 0 0";
    const std::string post = "PostMessageW 99 273 2142 0";
    start(true);
    EXPECT_EQ(mApi.asked(), Texts{"BluetoothRegisterForAuthenticationEx 560 0"});
    ASSERT_TRUE(mApi.simulateRequest(kAsker));
    const std::vector<Sighting> here = {{kAsker, L"Phone", 0x5A020C, std::this_thread::get_id()}};
    EXPECT_EQ(mRequests, here);
    (void)rescan(); // the wait has begun
    mClock.advance(milliseconds(499));
    (void)rescan();
    EXPECT_EQ(mApi.asked(), (Texts{search, search}));
    mClock.advance(milliseconds(1));
    (void)rescan();
    EXPECT_EQ(mApi.asked(), (Texts{post, search}));
    ASSERT_TRUE(mApi.simulateRequest(kAsker));
    (void)rescan();
    (void)rescan();
    EXPECT_EQ(std::ranges::count(mApi.asked(), post), 1) << "at once";
}

TEST_F(WindowsBackend, WhatIsNotThereOrRefusedIsTold) {
    start(false);
    EXPECT_FALSE(mApi.simulateRequest(kAsker)) << "nobody has registered";
    EXPECT_EQ(mBackend->enableDiscoverable(), error_code());
    EXPECT_TRUE(mBackend->isDiscoverable());
    EXPECT_EQ(mBackend->disableDiscoverable(), error_code());
    EXPECT_FALSE(mBackend->isDiscoverable());
    mApi.hasTrayWindow = false;
    mApi.failures["BluetoothEnableDiscovery"] = {87, 87};
    CapturedLog log(kLogDebug, kBackendName);
    EXPECT_EQ(mBackend->enableDiscoverable(), genericError(1));
    EXPECT_EQ(mBackend->disableDiscoverable(), genericError(1));
    EXPECT_EQ(mBackend->showPairingUi(), genericError(3));
    EXPECT_EQ(mBackend->unregisterIncoming(), genericError(1));
    EXPECT_EQ(log.told(), (Texts{"error enableDiscoverable: BluetoothEnableDiscovery error",
                                 "error disableDiscoverable: BluetoothEnableDiscovery error",
                                 "error showPairingUi: unable to find BT tray window",
                                 "error unregisterIncoming: not registered"}));
}

TEST_F(WindowsBackend, FailedRegistrationOrThreadFailsTheStartAndLeavesNothingHeld) {
    mApi.failures["BluetoothRegisterForAuthenticationEx"] = {50, 0};
    CapturedLog log(kLogDebug, kBackendName);
    EXPECT_EQ(mBackend->start(true), genericError(50));
    EXPECT_EQ(
        log.told(),
        (Texts{"error registerIncoming: BluetoothRegisterForAuthenticationEx error. Error: 50",
               "error start: unable to register for incoming auth notifications. Error: 50"}));
    mApi.failures.clear();
    setThreadMaker([](std::function<void()>) -> std::thread {
        throw std::system_error(EAGAIN, std::generic_category());
    });
    EXPECT_EQ(mBackend->start(true).value(), 11);
    EXPECT_EQ(mBackend->getHidDriverVersion(), -1);
    setThreadMaker(&makeThread);
    EXPECT_TRUE(mApi.held().empty());
}

TEST_F(WindowsBackend, StopCancelsWhatWaitsAndABackendMayBeStartedAgain) {
    start(true);
    ASSERT_TRUE(mApi.simulateRequest(kAsker));
    (void)rescan();
    CapturedLog log(kLogError, kBackendName);
    mBackend->stop();
    const error_code cancelled = boost::asio::error::operation_aborted;
    EXPECT_EQ(log.told(), Texts{"error onBluetoothAuth: error = " + cancelled.message()});
    EXPECT_TRUE(mApi.held().empty());
    start(true);
    EXPECT_EQ(rescan(), error_code());
    ASSERT_TRUE(mApi.simulateRequest(kAsker));
    EXPECT_EQ(mRequests.size(), 1u) << "stop disconnects the slots";
}

TEST_F(WindowsBackend, WhatStopFindsWaitingIsNotAnswered) {
    start();
    std::promise<void> stopped;
    std::atomic<int> answered = 0;
    mBackend->pair(kAskerAddress, [&](error_code) {
        mBackend->discoverOnce([&](error_code) { ++answered; }, 3);
        mBackend->stop();
        mBackend->discoverOnce([&](error_code) { ++answered; }, 3);
        stopped.set_value();
    });
    stopped.get_future().wait();
    start();
    EXPECT_EQ(rescan(), error_code());
    EXPECT_EQ(answered, 0);
    EXPECT_EQ(mApi.asked(), (Texts{"BluetoothAuthenticateDeviceEx 560 113780617491 3",
                                   "BluetoothFindFirstDevice 40 1 1 0 0 0 0 0"}));
}

TEST_F(WindowsBackend, RunningBackendMayGoWhileRequestsCome) {
    start(true);
    std::promise<void> asked;
    std::atomic<int> told = 0;
    mBackend->onAuthenticationRequest.connect([&](const auto&...) {
        if (++told == 1)
            asked.set_value();
    });
    std::atomic<bool> enough = false;
    std::thread platform([&] {
        while (!enough)
            (void)mApi.simulateRequest(kAsker);
    });
    asked.get_future().wait();
    mBackend.reset();
    const int untilThen = told;
    (void)mApi.simulateRequest(kAsker);
    enough = true;
    platform.join();
    EXPECT_EQ(told, untilThen);
    EXPECT_TRUE(mApi.held().empty());
}

TEST_F(WindowsBackend, SlotOfItsOwnMayDestroyIt) {
    mApi.simulateDevice(kAsker, u"Phone", 0);
    mApi.simulateDevice(kAsker + 1, u"Another", 0);
    start();
    mBackend->onPeerFound.connect([&](const auto&...) { mBackend.reset(); });
    EXPECT_EQ(rescan(), error_code());
    EXPECT_EQ(mFound.size(), 1u);

    mBackend = std::make_unique<Backend>(mApi, mDriver, mClock);
    start(true);
    mBackend->onAuthenticationRequest.connect([&](const auto&...) { mBackend.reset(); });
    EXPECT_TRUE(mApi.simulateRequest(kAsker));
    EXPECT_FALSE(mBackend);
}

TEST_F(WindowsBackend, DriversAreVerifiedUnderTheNameOfWhoAsks) {
    const error_code notInstalled = DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled);
    CapturedLog log(kLogError, kBackendName);
    EXPECT_EQ(mBackend->getHidDriverVersion(), -1);
    EXPECT_EQ(mBackend->verifyHidDriverVersion(), notInstalled);
    EXPECT_EQ(mBackend->verifyHandsfreeDriverVersion(), notInstalled);
    mDriver.simulateHidDriver();
    mDriver.simulateDevice(driver::kHandsfreeInterface, L"{a1}_LOCALMFG");
    const int codes[] = {DriverErrors::VersionOld, 0, DriverErrors::VersionNew};
    for (const std::int16_t version : {0, 1, 2}) {
        mDriver.version = version;
        EXPECT_EQ(mBackend->getHidDriverVersion(), version);
        EXPECT_EQ(mBackend->verifyHandsfreeDriverVersion().value(), codes[version]);
        EXPECT_EQ(mDriver.requests.back().code, 0x222018u);
        EXPECT_EQ(mDriver.openings.back().flags, 0xA0000000u);
    }
    EXPECT_EQ(mBackend->verifyHidDriverVersion().value(), int{DriverErrors::VersionOld});
    const std::string handsfree = "error verifyHandsfreeDriverVersion() ";
    EXPECT_EQ(log.missing({"error getHidDriverVersion() Unable to open HID driver",
                           "error verifyHidDriverVersion() Unable to open HID driver, error: " +
                               notInstalled.message(),
                           handsfree + "Unable to open HF driver",
                           handsfree + "Driver version older than expected: 0 vs 4",
                           handsfree + "Driver version newer than expected: 2 vs 4"}),
              Texts{});
    mDriver.failures["DeviceIoControl"] = 31;
    EXPECT_EQ(mBackend->getHidDriverVersion(), -1);
    EXPECT_EQ(mBackend->verifyHandsfreeDriverVersion().value(), 31);
    EXPECT_EQ(mDriver.held(), 0u);
}

} // namespace
} // namespace orbelantine::test
