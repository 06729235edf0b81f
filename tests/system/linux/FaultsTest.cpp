#include "core/common/errors/ErrorCode.h"
#include "core/common/run/WorkerThread.h"
#include "hid/channel/HIDDeviceClient.h"
#include "hid/channel/WindowsBluetoothHIDDeviceClient.h"
#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/hid/FakeLocalRadioApi.h"
#include "tests/support/HandClock.h"
#include "tests/system/linux/Session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace orbelantine::test {
namespace {

constexpr DriverApi::Error kAccessDenied = 5;

/// What a failing call makes of a connect or reconnect.
enum Effect { kNone = 0, kSocketFailure = -1, kWrongVersion = 136 };

struct Call {
    const char* name;
    Effect effect;
};

using Calls = std::vector<Call>;

Calls operator+(Calls calls, const Calls& further) {
    calls.insert(calls.end(), further.begin(), further.end());
    return calls;
}

/// Finding and opening the driver's device.
Calls opening(Effect effect) {
    return {{"SetupDiGetClassDevs", effect},
            {"SetupDiEnumDeviceInterfaces", effect},
            {"SetupDiGetDeviceInterfaceDetail", effect},
            {"LocalAlloc", effect},
            {"SetupDiGetDeviceInterfaceDetail", effect},
            {"CreateFile", effect},
            {"CM_Register_Notification", kNone}};
}

/// Looking for the local device's type, which counts as 2 whatever becomes of it.
const Calls kTypeCalls = opening(kNone) + Calls{{"DeviceIoControl", kNone}};
/// Each of the two channels.
const Calls kChannelCalls = opening(kSocketFailure) + Calls{{"DeviceIoControl", kWrongVersion},
                                                            {"DeviceIoControl", kSocketFailure}};
const Calls kGreetingCalls = {{"WriteFile", kNone}, {"WriteFile", kSocketFailure}};
const Calls kReportCalls = {{"WriteFile", kNone}};
const Calls kLinkCalls = kChannelCalls + kChannelCalls + kGreetingCalls;
const Calls kConnectCalls = kTypeCalls + kTypeCalls + kLinkCalls;

/// Every call of a session that connects, sends a report, sleeps, wakes by a report and ends.
const Calls kSessionCalls = kConnectCalls + kReportCalls + kLinkCalls + kReportCalls;
const std::size_t kFirstReportCall = kConnectCalls.size();
const std::size_t kReconnectCall = kFirstReportCall + 1;
const std::size_t kSecondReportCall = kReconnectCall + kLinkCalls.size();

/// A device that tells when it has been given a report, sent or not.
class NotingDevice final : public HIDDeviceClient {
  public:
    NotingDevice(DriverApi& api, IClock& clock, Journal& journal)
        : HIDDeviceClient(api, clock)
        , mJournal(journal) {}

    void sendReport(const std::uint8_t* data, std::size_t size) override {
        HIDDeviceClient::sendReport(data, size);
        mJournal.note("report");
    }

  private:
    Journal& mJournal;
};

/// The whole road on a fake of the platform, one call of which fails.
struct FaultySession {
    explicit FaultySession(std::size_t failing) {
        api.simulateHidDriver();
        api.simulateFailure(failing, kAccessDenied);
        session.client->onConnected.connect([this] { journal.note("connected"); });
        session.client->onDisconnected.connect(
            [this](error_code ec) { journal.note("lost " + std::to_string(ec.value())); });
    }

    ~FaultySession() {
        session.client.reset();
        EXPECT_EQ(api.held(), 0U);
    }

    /// The result of a connect, and what it raised.
    Names connect() {
        const error_code result = session.connect();
        session.settle();
        Names notes = journal.take();
        notes.insert(notes.begin(), std::to_string(result.value()));
        return notes;
    }

    /// What a new key raises, up to `last`.
    Names press(const std::string& last) {
        session.key(true, nextKey++);
        journal.await(last);
        session.settle();
        Names notes = journal.take();
        // They come from two threads.
        std::ranges::sort(notes);
        return notes;
    }

    void pause() {
        session.client->pauseConnection();
        session.settle();
    }

    FakeDriverApi api;
    FakeLocalRadioApi radio;
    HandClock clock;
    Journal journal;
    std::uint32_t nextKey = kScanA;
    FactoryOverride<IHIDDeviceClient> devices{
        "HIDDeviceClient",
        [this](const KVStore&) { return boost::make_shared<NotingDevice>(api, clock, journal); }};
    FactoryOverride<IBluetoothHIDDeviceClient> stacks{
        "WindowsBluetoothHIDDeviceClient", [this](const KVStore&) {
            return boost::make_shared<WindowsBluetoothHIDDeviceClient>(api, radio);
        }};
    Session session{clock};
};

std::string lost(Effect effect) {
    return "lost " + std::to_string(effect);
}

const Names kConnected = {"0", "connected"};
const Names kSent = {"report"};
const Names kWokenAndSent = {"connected", "report"};

Effect effectWithin(std::size_t call, std::size_t first, const Calls& calls) {
    return call >= first && call < first + calls.size() ? calls[call - first].effect : kNone;
}

/// Plays a session in which the call at this place of kSessionCalls fails, and another after it.
void playWithFailure(std::size_t failing) {
    FaultySession session(failing + 1);
    const Effect connecting = effectWithin(failing, 0, kConnectCalls);
    const Effect waking = effectWithin(failing, kReconnectCall, kLinkCalls);
    const bool loses = failing == kFirstReportCall || failing == kSecondReportCall;

    // The chain stands after a failure too: the next event tries again.
    EXPECT_EQ(session.connect(),
              connecting ? (Names{std::to_string(connecting), lost(connecting)}) : kConnected);
    EXPECT_EQ(session.api.openFiles(), connecting ? 0U : 2U);
    EXPECT_EQ(session.press("report"), connecting ? kWokenAndSent : kSent);
    session.pause();
    EXPECT_EQ(session.api.openFiles(), 0U);
    if (waking) {
        EXPECT_EQ(session.press(lost(waking)), Names{lost(waking)}) << "the event is lost";
    }
    EXPECT_EQ(session.press("report"), kWokenAndSent);
    EXPECT_EQ(
        std::ranges::count(session.api.writes, driver::kInterruptPsm, &FakeDriverApi::Write::psm),
        loses ? 1 : 2);

    EXPECT_EQ(session.session.disconnect(), error_code());
    EXPECT_EQ(session.api.held(), 0U);
    EXPECT_EQ(session.connect(), kConnected);
    EXPECT_EQ(session.press("report"), kSent);
    EXPECT_EQ(session.session.disconnect(), error_code());
    EXPECT_EQ(session.api.held(), 0U);
}

TEST(Faults, SessionMakesJustTheseCalls) {
    FaultySession session(0);
    EXPECT_EQ(session.connect(), kConnected);
    EXPECT_EQ(session.press("report"), kSent);
    session.pause();
    EXPECT_EQ(session.press("report"), kWokenAndSent);
    Names expected;
    for (const Call& call : kSessionCalls)
        expected.emplace_back(call.name);
    EXPECT_EQ(session.api.calls, expected);
}

TEST(Faults, AnyOneCallMayFailAndTheNextSessionWorks) {
    const Watchdog watchdog(60);
    for (std::size_t failing = 0; failing < kSessionCalls.size(); ++failing) {
        const std::string name =
            "call " + std::to_string(failing) + ", " + kSessionCalls[failing].name;
        const testing::ScopedTrace trace(__FILE__, __LINE__, name);
        watchdog.begin(name);
        playWithFailure(failing);
    }
}

std::atomic<int> threadsMade;
std::atomic<int> missingThread;

std::thread makeAllThreadsButOne(std::function<void()> body) {
    if (threadsMade++ == missingThread)
        throw std::system_error(EAGAIN, std::generic_category());
    return makeThread(std::move(body));
}

TEST(Faults, AnyOneThreadMayBeMissingAndNobodyWaitsForIt) {
    const Watchdog watchdog(60);
    // A device whose type can't be asked for counts as a relative mouse.
    constexpr std::pair<const char*, bool> kConnects[] = {{"type, for the reports", true},
                                                          {"keyboard", false},
                                                          {"type, for the mouse", true},
                                                          {"mouse", false},
                                                          {"control channel", false},
                                                          {"interrupt channel", false},
                                                          {"none", true}};
    int missing = 0;
    for (const auto& [name, succeeds] : kConnects) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, name);
        watchdog.begin(name);
        FaultySession session(0);
        threadsMade = 0;
        missingThread = missing++;
        setThreadMaker(&makeAllThreadsButOne);
        const error_code result = session.session.connect();
        setThreadMaker(&makeThread);
        EXPECT_EQ(!result, succeeds) << result.message();
        EXPECT_GE(threadsMade, std::min(missing, int{std::size(kConnects)} - 1));
    }
}

} // namespace
} // namespace orbelantine::test
