#include "tools/virtual_phone/driver/linux/DeviceServer.h"

#include "tests/phone/linux/TestHost.h"
#include "tools/program/linux/ControlPipe.h"
#include "tools/virtual_phone/program/Control.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orbelantine::phone {

namespace {

using Milliseconds = std::chrono::milliseconds;

class DeviceServerTest : public SteppedServerTest<DeviceServer, true> {
  protected:
    DeviceServerTest() { mOptions.devices = mFolder / "devices"; }

    DeviceServer& server() override {
        if (!mServer) {
            mDriver.emplace(mOptions.address, mOptions.faults, mPhone, mLog);
            mServer.emplace(DeviceServer::Parts{*mDriver, mLog, [this] { return mNow; }}, mOptions,
                            mStop.reader.get());
        }
        return *mServer;
    }

    Options mOptions;
    EventLog mLog{nullptr, nullptr};
    Phone mPhone{{100, 100}, mLog};
    std::optional<Driver> mDriver;
    std::optional<DeviceServer> mServer;
};

mode_t modeOf(const std::string& path) {
    struct stat status {};

    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode;
}

std::string startFailure(const Options& options) {
    try {
        const DeviceSocket socket(options.devices, options.address);
        return "";
    } catch (const std::runtime_error& failure) {
        return failure.what();
    }
}

} // namespace

TEST_F(DeviceServerTest, SocketStandsUnderItsClassWithTheMarkInItsName) {
    EXPECT_EQ(server().path(), mOptions.devices + "/4df52311-7aa8-4d3c-b58b-3749826e10a6/" +
                                   "{hid}_localmfg#001122334455");
    EXPECT_TRUE(S_ISSOCK(modeOf(server().path())));
    EXPECT_EQ(modeOf(mOptions.devices) & 0777U, 0700U);
}

TEST_F(DeviceServerTest, PacketsBeforeAHangUpAreTakenAndItsChannelIsFree) {
    for (int session = 0; session < 2; ++session) {
        {
            const TestHost interrupt = openInterrupt();
            for (int i = 0; i < 50; ++i) {
                interrupt.send(packet::kTypeA);
                interrupt.send(packet::kRelease);
            }
        }
        run();
    }
    EXPECT_EQ(mPhone.textField().text(), std::string(100, 'a'));
}

TEST_F(DeviceServerTest, StopLetsWhatWasSentBeforeItArriveForHalfASecond) {
    const TestHost interrupt = openInterrupt();
    interrupt.send(packet::kTypeA);
    stop();
    EXPECT_TRUE(server().step());
    EXPECT_EQ(mPhone.textField().text(), "a");
    mNow = Milliseconds(500);
    interrupt.send(packet::kRelease);
    EXPECT_FALSE(server().step());
}

TEST_F(DeviceServerTest, ControlLinesOfAnyWriterCountBeforeTheReports) {
    Control control(mPhone, nullptr);
    const std::string path = mFolder / "control";
    ControlPipe pipe(path, control);
    server().setControl(pipe);
    const TestHost interrupt = openInterrupt();
    interrupt.send({0, 0, 0, 0, 0xA1, 1, 1, 5, 0, 0, 0, 0, 0});
    for (const char* text : {"target 5", "0 60\nscre", "en 300 200 2 2\ntarget 1 2\n"})
        std::ofstream(path) << text;
    EXPECT_TRUE(run());
    EXPECT_EQ(mPhone.screen(), (Screen{300, 200, 2, 2}));
    EXPECT_EQ(mPhone.trace().aims(), (std::vector<Aim>{{{1, 2}, Point{50, 55}}}));
}

TEST_F(DeviceServerTest, ControlTakesThePlaceOfAStaleFifoOnly) {
    Control control(mPhone, nullptr);
    const std::string path = mFolder / "control";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    {
        const ControlPipe pipe(path, control);
        EXPECT_THROW(ControlPipe(path, control), std::runtime_error) << "of another phone";
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    std::ofstream(path) << "mine";
    EXPECT_THROW(ControlPipe(path, control), std::runtime_error);
    EXPECT_EQ(std::filesystem::file_size(path), 4U);
}

TEST_F(DeviceServerTest, MalformedPacketsLeaveTheHandleInUse) {
    const TestHost host = open();
    run();
    for (const std::size_t size : {std::size_t{2}, std::size_t{0}, Driver::kMaxPacket + 1})
        EXPECT_EQ(exchange(host, TestHost::Bytes(size)), std::nullopt);
    EXPECT_EQ(mPhone.tally().errors, 3U);
    EXPECT_EQ(exchange(host, packet::kGetVersion), packet::kVersion4);
}

TEST_F(DeviceServerTest, LateRepliesComeWhenTheyAreDueAndInOrder) {
    mOptions.faults.late = Milliseconds(200);
    const TestHost host = open();
    run();
    EXPECT_EQ(exchange(host, packet::kGetVersion), std::nullopt);
    mNow = Milliseconds(100);
    EXPECT_EQ(exchange(host, packet::kConnectControl), std::nullopt);
    mNow = Milliseconds(200);
    run();
    EXPECT_EQ(host.received(), packet::kVersion4);
    EXPECT_EQ(host.received(), std::nullopt);
    mNow = Milliseconds(300);
    run();
    EXPECT_EQ(host.received(), packet::kSuccess);
}

TEST_F(DeviceServerTest, VanishesFromEveryHandleAndEnds) {
    mOptions.faults.vanishAfter = 1;
    const TestHost idle = open();
    const TestHost interrupt = openInterrupt();
    interrupt.send(packet::kTypeA);
    EXPECT_FALSE(run());
    EXPECT_EQ(idle.received(), packet::kHangUp);
    EXPECT_EQ(interrupt.received(), packet::kHangUp);
    EXPECT_EQ(server().path(), "");
}

TEST_F(DeviceServerTest, ComesBackAfterVanishingToStay) {
    mOptions.faults.vanishAfter = 1;
    mOptions.faults.returnAfter = Milliseconds(1000);
    const std::string path = server().path();
    openInterrupt().send(packet::kTypeA);
    EXPECT_TRUE(run());
    mNow = Milliseconds(999);
    EXPECT_TRUE(run());
    EXPECT_FALSE(TestHost(path).isOpen());
    mNow = Milliseconds(1000);
    EXPECT_TRUE(run());
    const TestHost again = openInterrupt();
    EXPECT_EQ(exchange(again, packet::kTypeA), std::nullopt);
    EXPECT_EQ(server().path(), path);
    EXPECT_EQ(mPhone.textField().text(), "aa");
}

TEST_F(DeviceServerTest, TooManyHandlesCloseOnlyTheNewest) {
    std::vector<TestHost> hosts;
    for (int i = 0; i < 65; ++i) {
        hosts.push_back(open());
        run();
    }
    EXPECT_EQ(hosts.back().received(), packet::kHangUp);
    for (const std::size_t i : {0U, 63U})
        EXPECT_EQ(exchange(hosts[i], packet::kGetVersion), packet::kVersion4);
}

TEST_F(DeviceServerTest, SecondPhoneOfTheSameAddressIsTurnedAway) {
    const std::string path = server().path();
    EXPECT_EQ(startFailure(mOptions), "another phone is listening at " + path +
                                          ": stop it, or choose another --address or --devices");
    EXPECT_TRUE(open().isOpen()) << "the first phone's socket is still there";
    mOptions.address = {{0, 1, 2, 3, 4, 5}};
    EXPECT_EQ(startFailure(mOptions), "");
}

TEST_F(DeviceServerTest, StaleSocketIsReplacedAndAFileIsNot) {
    const std::string path = server().path();
    mServer.reset();
    std::ofstream(path) << "installed";
    EXPECT_EQ(startFailure(mOptions), path + " is there and is not a socket: remove it first");
    std::filesystem::remove(path);

    const FileDescriptor dead(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    const sockaddr_un address = socketAddress(path);
    ASSERT_EQ(::bind(dead.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    EXPECT_EQ(exchange(open(), packet::kGetVersion), packet::kVersion4);
}

TEST_F(DeviceServerTest, FolderThatCannotServeIsNamed) {
    std::ofstream(mFolder / "file") << "x";
    mOptions.devices = mFolder / "file/devices";
    EXPECT_TRUE(startFailure(mOptions).ends_with(": Not a directory"));
    mOptions.devices = mFolder / std::string(60, 'd');
    EXPECT_TRUE(startFailure(mOptions).ends_with("choose a shorter --devices"));
}

TEST(DefaultDeviceFolder, ComesFromTheEnvironmentInOrder) {
    ::setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
    ::setenv("ORBELANTINE_DEVICE_DIR", "/d", 1);
    EXPECT_EQ(defaultDeviceFolder(), "/d");
    ::setenv("ORBELANTINE_DEVICE_DIR", "", 1);
    EXPECT_EQ(defaultDeviceFolder(), "/run/user/7/orbelantine/devices");
    ::unsetenv("ORBELANTINE_DEVICE_DIR");
    ::unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(defaultDeviceFolder(), "/tmp/orbelantine-" + std::to_string(::getuid()) + "/devices");
}

} // namespace orbelantine::phone
