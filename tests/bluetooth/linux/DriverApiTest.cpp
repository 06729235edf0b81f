#include "bluetooth/DriverApi.h"

#include "bluetooth/BluetoothDriver.h"
#include "bluetooth/DriverProtocol.h"
#include "bluetooth/WindowsBluetoothHIDDevice.h"
#include "bluetooth/linux/LinuxErrors.h"
#include "core/common/ErrorAreas.h"
#include "core/common/ErrorCode.h"
#include "tests/bluetooth/linux/DeviceFolderFixture.h"

#include <pthread.h>

#include <fstream>
#include <future>
#include <random>

namespace orbelantine {
namespace {

using test::ScriptedDevice;
using Link = ScriptedDevice::Link;
using Packet = ScriptedDevice::Packet;

const Guid& kClass = driver::kHidInterfaces[0];
constexpr std::uint32_t kCode = 0x220008;

class LinuxDriverApi : public test::DeviceFolderFixture {
  protected:
    ~LinuxDriverApi() override { mApi.closeHandle(mFile); }

    void open() { ASSERT_EQ(mApi.createFile(devicePath(kClass).wstring(), 0, 0, 0, 0, mFile), 0u); }

    DriverApi::Error ask(std::uint32_t& output) {
        return mApi.deviceIoControl(mFile, kCode, nullptr, 0, &output, sizeof(output), mReturned);
    }

    DriverApi::Error write(const Packet& report) {
        std::uint32_t written = 0;
        return mApi.writeFile(mFile, report.data(), static_cast<std::uint32_t>(report.size()),
                              written);
    }

    DriverApi& mApi = DriverApi::system();
    DriverApi::Handle mFile = DriverApi::kInvalidHandle;
    std::uint32_t mReturned = 0;
};

TEST_F(LinuxDriverApi, RequestIsCodeAndInputAndReplyIsErrorAndOutput) {
    std::promise<Packet> asked;
    const ScriptedDevice device(devicePath(kClass), [&](const Link& link, const Packet& packet) {
        asked.set_value(packet);
        link.send({0, 0, 0, 0, 0x78, 0x56, 0x34, 0x12});
        return true;
    });
    open();
    std::uint32_t output = 0;
    const Packet input = {1, 2, 3};
    EXPECT_EQ(mApi.deviceIoControl(mFile, kCode, input.data(), 3, &output, 4, mReturned), 0u);
    EXPECT_EQ(asked.get_future().get(), (Packet{0x08, 0x00, 0x22, 0x00, 1, 2, 3}));
    EXPECT_EQ(output, 0x12345678u);
    EXPECT_EQ(mReturned, 4u);
}

TEST_F(LinuxDriverApi, WriteIsOnePacketOfCodeZero) {
    std::promise<Packet> received;
    const ScriptedDevice device(devicePath(kClass), [&](const Link&, const Packet& packet) {
        received.set_value(packet);
        return true;
    });
    open();
    EXPECT_EQ(write({0xA1, 0x02, 0x05}), 0u);
    EXPECT_EQ(received.get_future().get(), (Packet{0, 0, 0, 0, 0xA1, 0x02, 0x05}));
}

TEST_F(LinuxDriverApi, BadRepliesGiveAnErrorAndLeaveTheOutputAlone) {
    const struct {
        Packet reply;
        DriverApi::Error expected;
    } cases[] = {
        {{1, 2, 3}, win32::kErrorInvalidData},
        {{0x05, 0, 0, 0}, win32::kErrorAccessDenied},
        {{0x05, 0, 0, 0, 9, 9, 9, 9}, win32::kErrorAccessDenied},
        {{0, 0, 0, 0, 9, 9, 9, 9, 9}, win32::kErrorMoreData},
        {Packet(4000, 0), win32::kErrorMoreData},
    };

    std::size_t next = 0;
    const ScriptedDevice device(devicePath(kClass), [&](const Link& link, const Packet&) {
        link.send(cases[next++].reply);
        return true;
    });
    open();
    for (const auto& [reply, expected] : cases) {
        std::uint32_t output = 42;
        EXPECT_EQ(ask(output), expected);
        EXPECT_EQ(output, 42u);
    }
}

TEST_F(LinuxDriverApi, PacketThatNobodyAskedForIsNoReply) {
    std::promise<void> unasked;
    const ScriptedDevice device(devicePath(kClass), [&](const Link& link, const Packet& packet) {
        const bool isWrite = packet == Packet{0, 0, 0, 0, 1};
        link.send({0, 0, 0, 0, static_cast<std::uint8_t>(isWrite ? 99 : 7), 0, 0, 0});
        if (isWrite)
            unasked.set_value();
        return true;
    });
    open();
    ASSERT_EQ(write({1}), 0u);
    unasked.get_future().wait();
    std::uint32_t output = 0;
    EXPECT_EQ(ask(output), 0u);
    EXPECT_EQ(output, 7u);
}

TEST_F(LinuxDriverApi, HangUpInsteadOfAReplyIsADeviceNotConnected) {
    const ScriptedDevice device(devicePath(kClass), [](auto&&...) { return false; });
    open();
    std::uint32_t output = 0;
    EXPECT_EQ(ask(output), win32::kErrorDeviceNotConnected);
    EXPECT_EQ(write({1}), win32::kErrorDeviceNotConnected);
}

TEST_F(LinuxDriverApi, WaitsForALateReply) {
    std::promise<void> arrived;
    std::promise<void> mayReply;
    const ScriptedDevice device(devicePath(kClass), [&](const Link& link, const Packet&) {
        arrived.set_value();
        mayReply.get_future().wait();
        link.send({0, 0, 0, 0, 7, 0, 0, 0});
        return true;
    });
    open();
    std::uint32_t output = 0;
    auto asking = std::async(std::launch::async, [&] { return ask(output); });
    arrived.get_future().wait();
    mayReply.set_value();
    EXPECT_EQ(asking.get(), 0u);
    EXPECT_EQ(output, 7u);
}

TEST_F(LinuxDriverApi, CloseWakesARequestThatHangs) {
    std::promise<void> arrived;
    const ScriptedDevice device(devicePath(kClass), [&](const Link&, const Packet&) {
        arrived.set_value();
        return true;
    });
    open();
    std::uint32_t output = 0;
    auto asking = std::async(std::launch::async, [&] { return ask(output); });
    arrived.get_future().wait();
    mApi.closeHandle(mFile);
    EXPECT_EQ(asking.get(), win32::kErrorDeviceNotConnected);
    EXPECT_EQ(ask(output), static_cast<DriverApi::Error>(win32::kErrorInvalidHandle));
}

TEST_F(LinuxDriverApi, CloseWakesAWriteToADeviceThatReadsNothing) {
    std::promise<void> mayEnd;
    {
        const ScriptedDevice device(devicePath(kClass), [&](auto&&...) {
            mayEnd.get_future().wait();
            return false;
        });
        open();
        std::promise<void> first;
        auto writing = std::async(std::launch::async, [&] {
            DriverApi::Error error = write(Packet(1000, 1));
            first.set_value();
            while (!error)
                error = write(Packet(1000, 1));
            return error;
        });
        first.get_future().wait();
        mApi.closeHandle(mFile);
        const auto error = writing.get();
        EXPECT_TRUE(error == win32::kErrorDeviceNotConnected ||
                    error == static_cast<DriverApi::Error>(win32::kErrorInvalidHandle))
            << error;
        mayEnd.set_value();
    }
}

TEST_F(LinuxDriverApi, ClosedHandleNeverReachesALaterDevice) {
    std::atomic<int> packets = 0;
    const auto count = [&](auto&&...) { return ++packets > 0; };
    {
        const ScriptedDevice device(devicePath(kClass), count);
        open();
        mApi.closeHandle(mFile);
    }
    std::filesystem::remove(devicePath(kClass));
    const ScriptedDevice later(devicePath(kClass), count);
    const DriverApi::Handle stale = mFile;
    open();
    std::uint32_t written = 0;
    EXPECT_NE(stale, mFile);
    EXPECT_EQ(mApi.writeFile(stale, "x", 1, written),
              static_cast<DriverApi::Error>(win32::kErrorInvalidHandle));
    EXPECT_EQ(packets, 0);
}

TEST_F(LinuxDriverApi, OpeningTellsWhatIsMissing) {
    const std::string name(200, 'n');
    EXPECT_EQ(mApi.createFile(devicePath(kClass).wstring(), 0, 0, 0, 0, mFile),
              static_cast<DriverApi::Error>(win32::kErrorFileNotFound));
    EXPECT_EQ(mApi.createFile(devicePath(kClass, name).wstring(), 0, 0, 0, 0, mFile),
              win32::kErrorFilenameTooLong);
    std::filesystem::create_directories(devicePath(kClass).parent_path());
    std::ofstream(devicePath(kClass)).close();
    EXPECT_EQ(mApi.createFile(devicePath(kClass).wstring(), 0, 0, 0, 0, mFile),
              win32::kErrorGenFailure);
}

TEST_F(LinuxDriverApi, DriverThatIsNotThereIsToldFromOneThatDoesNotRun) {
    BluetoothDriver driver(false);
    EXPECT_EQ(driver.open(kClass, 0), DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled));
    std::filesystem::create_directories(devicePath(kClass).parent_path());
    std::ofstream(devicePath(kClass)).close();
    EXPECT_EQ(driver.open(kClass, 0), DriverErrors::getErrorCode(DriverErrors::DriverFailedToLoad));
}

TEST_F(LinuxDriverApi, VanishingInTheMiddleOfAReportIsARemoval) {
    const ScriptedDevice device(devicePath(kClass), [](const Link& link, const Packet& packet) {
        if (packet[0] != 0)
            link.send({0, 0, 0, 0, 4, 0});
        return packet[0] != 0;
    });
    WindowsBluetoothHIDDevice hid;
    std::promise<error_code> removed;
    char threadName[16] = {};
    ASSERT_FALSE(hid.open([&](error_code ec) {
        pthread_getname_np(pthread_self(), threadName, sizeof(threadName));
        hid.close();
        removed.set_value(ec);
    }));
    EXPECT_EQ(hid.checkVersion(), error_code());
    EXPECT_TRUE(hid.sendData("\xA1\x02", 2));
    EXPECT_EQ(removed.get_future().get(), error_code(19, boost::system::generic_category()));
    EXPECT_STREQ(threadName, "BluetoothDriver");
    EXPECT_FALSE(hid.sendData("\xA1\x02", 2));
}

TEST_F(LinuxDriverApi, NoNotificationAfterItsEnd) {
    std::atomic<int> calls = 0;
    const auto count = [](void* context, std::uint32_t) {
        ++*static_cast<std::atomic<int>*>(context);
        return DriverApi::Error{0};
    };
    DriverApi::NotifyFilter filter{};
    filter.size = sizeof(filter);
    filter.type = DriverApi::kNotifyFilterDeviceHandle;
    DriverApi::Handle notification = 0;
    EXPECT_EQ(mApi.registerNotification(filter, &calls, count, notification),
              win32::kCrInvalidData);
    {
        const ScriptedDevice device(devicePath(kClass), [](auto&&...) { return true; });
        open();
        filter.target = mFile;
        ASSERT_EQ(mApi.registerNotification(filter, &calls, count, notification), 0u);
        mApi.unregisterNotification(notification);
        // Closing here is no removal either.
        ASSERT_EQ(mApi.registerNotification(filter, &calls, count, notification), 0u);
        mApi.closeHandle(mFile);
        mApi.unregisterNotification(notification);
    }
    EXPECT_EQ(calls, 0);
}

TEST_F(LinuxDriverApi, AnyReplyEndsARequest) {
    std::mt19937 random(20230917);
    std::uniform_int_distribution<int> byte(0, 255);
    std::uniform_int_distribution<std::size_t> length(0, 12);
    std::uniform_int_distribution<int> zeroError(0, 1);
    // The request carries the reply that it is to get.
    const ScriptedDevice device(devicePath(kClass), [](const Link& link, const Packet& packet) {
        link.send(Packet(packet.begin() + 4, packet.end()));
        return true;
    });
    open();
    for (int i = 0; i < 2000; ++i) {
        Packet reply(length(random));
        for (auto& b : reply)
            b = static_cast<std::uint8_t>(byte(random));
        if (zeroError(random))
            std::fill_n(reply.begin(), std::min<std::size_t>(4, reply.size()), std::uint8_t{0});
        std::uint32_t output = 0;
        const bool good = reply.size() >= 4 && reply.size() <= 8 && reply[0] == 0 &&
                          reply[1] == 0 && reply[2] == 0 && reply[3] == 0;
        const auto error = mApi.deviceIoControl(mFile, kCode, reply.data(),
                                                static_cast<std::uint32_t>(reply.size()), &output,
                                                sizeof(output), mReturned);
        EXPECT_EQ(error == 0, good) << "reply " << i;
    }
}

} // namespace
} // namespace orbelantine
