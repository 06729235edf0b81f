#include "tools/l2cap_bridge/linux/Program.h"

#include "tests/bridge/linux/FakeL2cap.h"
#include "tests/bridge/linux/PrivateBus.h"
#include "tests/phone/linux/TestHost.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

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

std::string usageError(std::initializer_list<const char*> arguments) {
    const auto parsed = parseOptions(std::vector(arguments));
    const auto* error = std::get_if<phone::UsageError>(&parsed);
    return error == nullptr ? "" : error->message;
}

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

TEST_F(BridgeProgramTest, WithoutBluetoothOneLineSaysWhatToDo) {
    constexpr std::pair<int, const char*> kLines[] = {
        {EAFNOSUPPORT,
         "l2cap_bridge: this kernel has no Bluetooth: load it with \"modprobe bluetooth\", or use "
         "a machine with a radio\n"},
        {EACCES, "l2cap_bridge: no permission to use Bluetooth: run this as root, or outside of "
                 "the container\n"},
        {ENODEV, "l2cap_bridge: no Bluetooth adapter is up: plug one in, or switch it on with "
                 "\"bluetoothctl power on\"\n"},
    };
    for (const auto& [error, line] : kLines) {
        mL2cap.simulateRadio(error);
        EXPECT_EQ(run(), kExitNoBluetooth);
        EXPECT_EQ(mErr.str(), line);
    }
    EXPECT_FALSE(std::filesystem::exists(mOptions.devices));
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
    const PrivateBus bus;
    if (!bus.runs())
        GTEST_SKIP() << "dbus-daemon is not installed";
    FakeBlueZ bluez(bus.address());
    mOptions.publishRecord = true;
    mOptions.bus = bus.address();
    mOptions.name = R"(<Ann & "Bob">)";
    EXPECT_EQ(runStopped(), kExitSuccess) << mErr.str();
    EXPECT_NE(
        bluez.profile()
            .option<std::string>("ServiceRecord")
            .find(R"(id="0x0100"><text value="&lt;Ann &amp; &quot;Bob&quot;&gt;"/></attribute>)"),
        std::string::npos);
    EXPECT_EQ(bluez.profile().path, "");
}

TEST_F(BridgeProgramTest, LogThatCannotBeWrittenIsNamed) {
    mOptions.log = mFolder / "missing/log";
    EXPECT_EQ(run(), kExitFailure);
    EXPECT_EQ(mErr.str(),
              "l2cap_bridge: cannot write " + mOptions.log + ": No such file or directory\n");
}

TEST(BridgeOptions, CommandLineIsReadOrOneLineSaysWhatIsWrong) {
    EXPECT_EQ(usageError({}), "l2cap_bridge: --address is missing: give the phone's, which "
                              "\"bluetoothctl devices\" tells; l2cap_bridge --help lists the "
                              "options");
    EXPECT_EQ(usageError({"--address", "12"}),
              "l2cap_bridge: --address wants an address such as 00:11:22:33:44:55, not '12'; "
              "l2cap_bridge --help lists the options");
    const char* const arguments[] = {"--address=00:11:22:33:44:55", "--no-record", "--bus=x"};
    const auto options = std::get<Options>(parseOptions(arguments));
    EXPECT_FALSE(options.publishRecord);
    EXPECT_EQ(options.bus, "x");
}

} // namespace orbelantine::bridge
