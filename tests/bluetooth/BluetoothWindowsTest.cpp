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

namespace orbelantine::test {
namespace {

using Backend = BluetoothWindows;
using std::chrono::milliseconds;

constexpr std::uint64_t kAsker = 0x001A7DDA7113;
const CMacAddress kAskerAddress(kAsker);
const std::string kBackendName = "orbelantine::BluetoothWindows::";

struct Sighting {
    std::uint64_t address;
    std::wstring name;
    unsigned long deviceClass;
    std::thread::id thread;
    bool operator==(const Sighting&) const = default;
};

class WindowsBackend : public testing::Test {
  protected:
    using Asked = std::vector<std::string>;

    WindowsBackend() {
        mBackend->onPeerFound.connect(noting(mFound));
        mBackend->onAuthenticationRequest.connect(noting(mRequests));
    }

    static std::function<void(const CMacAddress&, const std::wstring&, unsigned long)>
    noting(std::vector<Sighting>& sightings) {
        return [&](const CMacAddress& address, const std::wstring& name, unsigned long type) {
            sightings.push_back({address.getUllAddress(), name, type, std::this_thread::get_id()});
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
        return completed([&](Completion done) { mBackend->rescanCachedPeers(std::move(done)); });
    }

    error_code discover(std::uint16_t multiplier) {
        return completed(
            [&](Completion done) { mBackend->discoverOnce(std::move(done), multiplier); });
    }

    error_code perform(void (Backend::*operation)(const CMacAddress&, Completion),
                       const CMacAddress& address = kAskerAddress) {
        return completed(
            [&](Completion done) { (mBackend.get()->*operation)(address, std::move(done)); });
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
    EXPECT_EQ(mApi.asked(), (Asked{"BluetoothFindFirstDevice 40 1 1 0 0 0 0 0",
                                   "BluetoothFindFirstDevice 40 0 0 1 0 1 3 0"}));
    EXPECT_TRUE(mApi.held().empty());
}

TEST_F(WindowsBackend, EachEndOfASearchGivesItsCodeAndTellsWhyAndLeavesNothingHeld) {
    const struct {
        const char* call;
        BluetoothApi::Error error;
        int expected;
        Texts lines;
    } cases[] = {
        {"BluetoothFindFirstRadio",
         259,
         generic::kNetworkDown,
         {"debug getLocalRadioInfo: BluetoothFindFirstRadio failed. Error: 259",
          "info windowsFindPeers() Bluetooth is not available"}},
        {"BluetoothFindFirstRadio",
         5,
         5,
         {"debug getLocalRadioInfo: BluetoothFindFirstRadio failed. Error: 5",
          "error windowsFindPeers: unable to get local radio info. Error: 5"}},
        {"BluetoothGetRadioInfo",
         1306,
         1306,
         {"error getLocalRadioInfo: unable to get Bluetooth radio info. Error: 1306",
          "error windowsFindPeers: unable to get local radio info. Error: 1306"}},
        {"BluetoothFindFirstDevice", 259, 0, {}},
        {"BluetoothFindFirstDevice",
         87,
         87,
         {"error windowsFindPeers: BluetoothFindFirstDevice error. Error: 87"}},
    };

    start();
    mApi.simulateDevice(kAsker, u"Phone", 0);

    for (const auto& [call, error, expected, lines] : cases) {
        mApi.failures = {{call, {error, error}}};
        CapturedLog log(kLogDebug, kBackendName);
        EXPECT_EQ(discover(3), expected ? genericError(expected) : error_code()) << call << error;
        EXPECT_EQ(log.told(), lines) << call << error;
        EXPECT_TRUE(mApi.held().empty()) << call << error;
    }
    EXPECT_TRUE(mFound.empty());
}

TEST_F(WindowsBackend, RadioIsOnUnlessThereIsNoneAndIsToldAsLastRead) {
    EXPECT_EQ(mBackend->getLocalName(), L"");
    mApi.simulateRadio(0x112233445566, u"Desk");
    EXPECT_TRUE(mBackend->isBluetoothOn());
    mApi.hasRadio = false;
    EXPECT_FALSE(mBackend->isBluetoothOn());
    mApi.failures["BluetoothFindFirstRadio"] = {120, 120};
    EXPECT_TRUE(mBackend->isBluetoothOn());
    EXPECT_EQ(mBackend->getLocalName(), L"Desk");
    EXPECT_EQ(mBackend->getLocalAddress(), CMacAddress(L"11:22:33:44:55:66"));
}

TEST_F(WindowsBackend, DiscoverabilityFollowsThePlatformAndItsRefusalIsTold) {
    EXPECT_EQ(mBackend->enableDiscoverable(), error_code());
    EXPECT_TRUE(mBackend->isDiscoverable());
    EXPECT_EQ(mBackend->disableDiscoverable(), error_code());
    EXPECT_FALSE(mBackend->isDiscoverable());
    mApi.failures["BluetoothEnableDiscovery"] = {87, 87};
    CapturedLog log(kLogDebug, kBackendName);
    EXPECT_EQ(mBackend->enableDiscoverable(), genericError(1));
    EXPECT_EQ(mBackend->disableDiscoverable(), genericError(1));
    EXPECT_EQ(log.told(), (Texts{"error enableDiscoverable: BluetoothEnableDiscovery error",
                                 "error disableDiscoverable: BluetoothEnableDiscovery error"}));
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
    ASSERT_TRUE(mApi.simulateRequest(kAsker, u"Phone", 5, 123456));
    (void)mApi.asked();

    for (const auto& [operation, name, call, arguments] : cases) {
        EXPECT_EQ(perform(operation), error_code()) << name;
        EXPECT_EQ(mApi.asked(), (Asked{call + arguments}));
        mApi.failures[call] = {1244, 31};
        CapturedLog log(kLogDebug, kBackendName);
        EXPECT_EQ(perform(operation), genericError(31)) << name;
        EXPECT_EQ(log.told(),
                  (Texts{std::string("error ") + name + ": " + call + " error. Error: 1244"}));
        (void)mApi.asked();
    }
}

TEST_F(WindowsBackend, AnswerForAnotherPeerThanTheOneThatAskedIsNotSent) {
    start(true);
    EXPECT_EQ(perform(&Backend::authRemote), genericError(14)) << "nobody asked";
    ASSERT_TRUE(mApi.simulateRequest(kAsker, u"Phone", 3, 1));
    ASSERT_TRUE(mApi.simulateRequest(kAsker + 1, u"Another", 3, 2));
    (void)mApi.asked();
    CapturedLog log(kLogDebug, kBackendName);
    EXPECT_EQ(perform(&Backend::authRemote), genericError(14));
    EXPECT_EQ(log.told(), Texts{"error authRemote: MAC address mismatch"});
    EXPECT_TRUE(mApi.asked().empty());
}

TEST_F(WindowsBackend, CallOnTheWorkerRunsAtOnceAndASearchWaits) {
    start();
    Asked order;
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
    EXPECT_EQ(order, (Asked{"unpaired", "asked", "searched"}));
}

TEST_F(WindowsBackend, RequestIsToldWhereItComesAndOpensThePairingUiHalfASecondAfterTheStart) {
    start(true);
    EXPECT_EQ(mApi.asked(), Asked{"BluetoothRegisterForAuthenticationEx 560 0"});
    ASSERT_TRUE(mApi.simulateRequest(kAsker, u"Phone", 3, 1));
    const std::vector<Sighting> here = {{kAsker, L"Phone", 0x5A020C, std::this_thread::get_id()}};
    EXPECT_EQ(mRequests, here);
    (void)rescan(); // the wait has begun
    mClock.advance(milliseconds(499));
    (void)rescan();
    const std::string search = "BluetoothFindFirstDevice 40 1 1 0 0 0 0 0";
    EXPECT_EQ(mApi.asked(), (Asked{search, search}));

    const std::string post = "PostMessageW 99 273 2142 0";
    mClock.advance(milliseconds(1));
    (void)rescan();
    EXPECT_EQ(mApi.asked(), (Asked{post, search}));
    ASSERT_TRUE(mApi.simulateRequest(kAsker, u"Phone", 3, 1));
    (void)rescan();
    (void)rescan();
    EXPECT_EQ(std::ranges::count(mApi.asked(), post), 1);
}

TEST_F(WindowsBackend, MachineWithoutTheTrayWindowHasNoPairingUi) {
    mApi.hasTrayWindow = false;
    CapturedLog log(kLogDebug, kBackendName);
    EXPECT_EQ(mBackend->showPairingUi(), genericError(3));
    EXPECT_EQ(log.told(), Texts{"error showPairingUi: unable to find BT tray window"});
}

TEST_F(WindowsBackend, StartWithoutIncomingHearsOfNoRequest) {
    start(false);
    EXPECT_TRUE(mApi.asked().empty());
    EXPECT_FALSE(mApi.simulateRequest(kAsker, u"Phone", 3, 1));
    CapturedLog log(kLogDebug, kBackendName);
    EXPECT_EQ(mBackend->unregisterIncoming(), genericError(1));
    EXPECT_EQ(log.told(), Texts{"error unregisterIncoming: not registered"});
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
    EXPECT_EQ(rescan(), genericError(generic::kConnectionAborted)) << "it isn't started";
}

TEST_F(WindowsBackend, StopCancelsWhatWaitsAndABackendMayBeStartedAgain) {
    start(true);
    ASSERT_TRUE(mApi.simulateRequest(kAsker, u"Phone", 3, 1));
    (void)rescan();
    CapturedLog log(kLogError, kBackendName);
    mBackend->stop();
    const error_code cancelled = boost::asio::error::operation_aborted;
    EXPECT_EQ(log.told(), Texts{"error onBluetoothAuth: error = " + cancelled.message()});
    EXPECT_TRUE(mApi.held().empty());
    (void)mApi.simulateRequest(kAsker, u"Late", 3, 1);
    start(true);
    EXPECT_EQ(rescan(), error_code());
    ASSERT_TRUE(mApi.simulateRequest(kAsker, u"Phone", 3, 1));
    EXPECT_EQ(mRequests.size(), 1u) << "slots are disconnected by stop";
}

TEST_F(WindowsBackend, OperationThatStopTakesBackCompletesAllTheSame) {
    start();
    std::promise<void> shown;
    std::promise<void> closed;
    mApi.onCall = [&](std::string_view call) {
        if (call == "BluetoothAuthenticateDeviceEx") {
            shown.set_value();
            closed.get_future().wait();
        }
    };
    mBackend->pair(kAskerAddress, [&](error_code) { mBackend->stop(); });
    shown.get_future().wait();
    std::promise<error_code> takenBack;
    mBackend->discoverOnce([&](error_code ec) { takenBack.set_value(ec); }, 3);
    closed.set_value();
    EXPECT_EQ(takenBack.get_future().get(), genericError(generic::kConnectionAborted));
    EXPECT_EQ(mApi.asked(), (Asked{"BluetoothAuthenticateDeviceEx 560 113780617491 3"}));
}

TEST_F(WindowsBackend, RunningBackendMayGoWhileRequestsCome) {
    start(true);
    mBackend->onAuthenticationRequest.disconnect_all_slots();
    std::promise<void> asked;
    std::atomic<int> told = 0;
    mBackend->onAuthenticationRequest.connect([&](const auto&...) {
        if (++told == 1)
            asked.set_value();
    });
    std::atomic<bool> enough = false;
    std::thread platform([&] {
        while (!enough)
            (void)mApi.simulateRequest(kAsker, u"Phone", 3, 1);
    });
    asked.get_future().wait();
    mBackend.reset();
    const int untilThen = told;
    EXPECT_TRUE(mApi.held().empty());
    (void)mApi.simulateRequest(kAsker, u"Late", 3, 1);
    enough = true;
    platform.join();
    EXPECT_EQ(told, untilThen);
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
    EXPECT_TRUE(mApi.simulateRequest(kAsker, u"Phone", 3, 1));
    EXPECT_FALSE(mBackend);
}

TEST_F(WindowsBackend, DriversAreVerifiedUnderTheNameOfWhoAsks) {
    CapturedLog log(kLogError, kBackendName);
    const error_code notInstalled = DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled);
    EXPECT_EQ(mBackend->getHidDriverVersion(), -1);
    EXPECT_EQ(mBackend->verifyHidDriverVersion(), notInstalled);
    EXPECT_EQ(mBackend->verifyHandsfreeDriverVersion(), notInstalled);
    EXPECT_EQ(log.missing({"error getHidDriverVersion() Unable to open HID driver",
                           "error verifyHidDriverVersion() Unable to open HID driver, error: " +
                               notInstalled.message(),
                           "error verifyHandsfreeDriverVersion() Unable to open HF driver"}),
              Texts{});
}

TEST_F(WindowsBackend, DriversVersionDecides) {
    mDriver.simulateHidDriver();
    mDriver.version = 5;
    EXPECT_EQ(mBackend->getHidDriverVersion(), 5);
    EXPECT_EQ(mBackend->verifyHidDriverVersion(),
              DriverErrors::getErrorCode(DriverErrors::VersionNew));
    mDriver.failures["DeviceIoControl"] = 31;
    EXPECT_EQ(mBackend->getHidDriverVersion(), -1);
    mDriver.failures.clear();

    mDriver.simulateDevice(driver::kHandsfreeInterface, L"{a1}_LOCALMFG");

    const struct {
        std::int16_t version;
        int expected;
        Texts lines;
    } cases[] = {
        {0,
         DriverErrors::VersionOld,
         {"error verifyHandsfreeDriverVersion() Driver version older than expected: 0 vs 4"}},
        {1, 0, {}},
        {4,
         DriverErrors::VersionNew,
         {"error verifyHandsfreeDriverVersion() Driver version newer than expected: 4 vs 4"}},
    };

    for (const auto& [version, expected, lines] : cases) {
        mDriver.version = version;
        CapturedLog log(kLogError, kBackendName);
        EXPECT_EQ(mBackend->verifyHandsfreeDriverVersion().value(), expected) << version;
        EXPECT_EQ(log.told(), lines) << version;
        EXPECT_EQ(mDriver.requests.back().code, 0x222018u);
    }
    EXPECT_EQ(mDriver.openings.back().flags, 0xA0000000u);
    EXPECT_EQ(mDriver.held(), 0u);
}

} // namespace
} // namespace orbelantine::test
