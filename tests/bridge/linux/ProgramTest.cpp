#include "tools/l2cap_bridge/linux/Program.h"

#include "tests/bridge/linux/FakeL2cap.h"
#include "tests/phone/linux/TestHost.h"
#include "tools/virtual_stack/linux/FakeBlueZ.h"
#include "tools/virtual_stack/linux/PrivateBus.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

namespace orbelantine::bridge {

namespace {

class BridgeProgramTest : public testing::Test {
  protected:
    ExitStatus run() {
        mErr.str("");
        return runBridge(mOptions, mL2cap, mOut, mErr);
    }

    /// Runs it with a signal that has come before: it starts, and ends at once.
    ExitStatus runStopped() {
        sigset_t before;
        sigset_t terminate;
        ::sigemptyset(&terminate);
        ::sigaddset(&terminate, SIGTERM);
        ::pthread_sigmask(SIG_BLOCK, &terminate, &before);
        ::pthread_kill(::pthread_self(), SIGTERM);
        const ExitStatus status = run();
        ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
        return status;
    }

    phone::TemporaryFolder mFolder;
    Options mOptions = optionsIn(mFolder / "devices");
    FakeL2cap mL2cap;
    std::ostringstream mOut;
    std::ostringstream mErr;
};

} // namespace

TEST_F(BridgeProgramTest, SignalEndsItAndLeavesNoSocketBehind) {
    mOptions.log = mFolder / "log";
    EXPECT_EQ(runStopped(), kExitSuccess) << mErr.str();
    EXPECT_EQ(mOut.str(),
              "l2cap_bridge to 00:11:22:33:44:55 is listening in " + mOptions.devices + "\n");
    for (const auto& entry : std::filesystem::recursive_directory_iterator(mOptions.devices))
        EXPECT_TRUE(entry.is_directory()) << entry.path();
    std::ifstream log(mOptions.log);
    const std::string text{std::istreambuf_iterator<char>(log), {}};
    EXPECT_NE(text.find(R"("event":"start","address":"00:11:22:33:44:55")"), std::string::npos);
}

TEST_F(BridgeProgramTest, WithoutBluetoothOneLineSaysWhatToDoAndWithoutItsLogItFails) {
    for (const auto& [error, remedy] : {std::pair{EAFNOSUPPORT, "modprobe bluetooth"},
                                        {EACCES, "run this as root"},
                                        {ENODEV, "bluetoothctl power on"}}) {
        mL2cap.simulateRadio(error);
        EXPECT_EQ(run(), kExitNoBluetooth);
        EXPECT_NE(mErr.str().find(remedy), std::string::npos) << mErr.str();
    }
    EXPECT_FALSE(std::filesystem::exists(mOptions.devices));
    mL2cap.simulateRadio(0);
    mOptions.log = mFolder / "missing/log";
    EXPECT_EQ(run(), kExitFailure);
}

TEST_F(BridgeProgramTest, RecordThatCannotBePublishedEndsItUnlessItIsNotWanted) {
    mOptions.publishRecord = true;
    mOptions.bus = "unix:path=" + (mFolder / "nowhere");
    EXPECT_EQ(run(), kExitNoRecord);
    EXPECT_EQ(mErr.str().substr(0, 36), "l2cap_bridge: D-Bus can't be reached");
    mOptions.publishRecord = false;
    EXPECT_EQ(runStopped(), kExitSuccess);
}

TEST_F(BridgeProgramTest, NameGoesIntoThePublishedRecordAsXmlText) {
    const stack::PrivateBus bus;
    if (!bus.runs())
        GTEST_SKIP() << "dbus-daemon is not installed";
    const stack::FakeBlueZ bluez({.bus = bus.address()});
    mOptions.publishRecord = true;
    mOptions.bus = bus.address();
    mOptions.name = R"(<Ann & "Bob">)";
    EXPECT_EQ(runStopped(), kExitSuccess) << mErr.str();
    EXPECT_NE(
        bluez.seen()
            .profile.option<std::string>("ServiceRecord")
            .find(R"(id="0x0100"><text value="&lt;Ann &amp; &quot;Bob&quot;&gt;"/></attribute>)"),
        std::string::npos);
    EXPECT_EQ(bluez.seen().profile.path, "");
}

TEST(BridgeOptions, AddressHasToBeGiven) {
    EXPECT_TRUE(std::holds_alternative<phone::UsageError>(parseOptions({})));
    const char* const arguments[] = {"--address=00:11:22:33:44:55", "--no-record", "--bus=x"};
    const auto options = std::get<Options>(parseOptions(arguments));
    EXPECT_FALSE(options.publishRecord);
    EXPECT_EQ(options.bus, "x");
}

} // namespace orbelantine::bridge
