#include "bluetooth/DriverApi.h"

#include "bluetooth/BluetoothDriver.h"
#include "bluetooth/DriverProtocol.h"
#include "bluetooth/WindowsBluetoothHIDDevice.h"
#include "bluetooth/linux/LinuxErrors.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/ErrorCode.h"
#include "tests/bluetooth/linux/DeviceFolderFixture.h"

#include <pthread.h>

#include <fstream>
#include <future>

namespace orbelantine {
namespace {

using test::ScriptedDevice;
using Packet = ScriptedDevice::Packet;
using Send = ScriptedDevice::Send;

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

TEST_F(LinuxDriverApi, RequestIsCodeAndInputAndWriteIsCodeZeroWithoutAReply) {
    std::vector<Packet> received;
    std::promise<void> unasked;
    const ScriptedDevice device(devicePath(kClass), [&](const Send& send, const Packet& packet) {
        received.push_back(packet);
        send({0, 0, 0, 0, 0x78, 0x56, 0x34, static_cast<std::uint8_t>(received.size())});
        if (packet[0] == 0)
            unasked.set_value();
        return true;
    });
    open();
    std::uint32_t output = 0;
    const Packet input = {1, 2, 3};
    EXPECT_EQ(mApi.deviceIoControl(mFile, kCode, input.data(), 3, &output, 4, mReturned), 0u);
    EXPECT_EQ(output, 0x01345678u);
    EXPECT_EQ(mReturned, 4u);
    EXPECT_EQ(write({0xA1, 0x02, 0x05}), 0u);
    unasked.get_future().wait();
    EXPECT_EQ(ask(output), 0u);
    EXPECT_EQ(output, 0x03345678u) << "what a write is answered is no reply";
    EXPECT_EQ(received,
              (std::vector<Packet>{
                  {0x08, 0x00, 0x22, 0x00, 1, 2, 3}, {0, 0, 0, 0, 0xA1, 2, 5}, {8, 0, 0x22, 0}}));
}

TEST_F(LinuxDriverApi, BadRepliesGiveAnErrorAndLeaveTheOutputAlone) {
    const struct {
        Packet reply;
        DriverApi::Error expected;
    } cases[] = {
        {{0}, win32::kErrorInvalidData},
        {{0, 0, 0}, win32::kErrorInvalidData},
        {{0x05, 0, 0, 0}, win32::kErrorAccessDenied},
        {{0, 0, 0, 0x80}, 0x80000000},
        {{0x05, 0, 0, 0, 9, 9, 9, 9}, win32::kErrorAccessDenied},
        {{0, 0, 0, 0, 9, 9, 9, 9, 9}, win32::kErrorMoreData},
        {Packet(4000, 0), win32::kErrorMoreData},
        // The device hangs up.
        {{}, win32::kErrorDeviceNotConnected},
    };

    std::size_t next = 0;
    const ScriptedDevice device(devicePath(kClass), [&](const Send& send, const Packet&) {
        const Packet& reply = cases[next++].reply;
        if (!reply.empty())
            send(reply);
        return !reply.empty();
    });
    open();
    for (const auto& [reply, expected] : cases) {
        std::uint32_t output = 42;
        EXPECT_EQ(ask(output), expected) << testing::PrintToString(reply);
        EXPECT_EQ(output, 42u) << testing::PrintToString(reply);
    }
    EXPECT_EQ(write({1}), win32::kErrorDeviceNotConnected);
}

TEST_F(LinuxDriverApi, CloseWakesARequestThatHangs) {
    std::promise<void> arrived;
    const ScriptedDevice device(devicePath(kClass), [&](const Send&, const Packet&) {
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
    const auto openAt = [&](const std::filesystem::path& path) {
        return mApi.createFile(path.wstring(), 0, 0, 0, 0, mFile);
    };
    BluetoothDriver driver(false);
    EXPECT_EQ(openAt(devicePath(kClass, std::string(200, 'n'))), win32::kErrorFilenameTooLong);
    EXPECT_EQ(openAt(devicePath(kClass)), static_cast<DriverApi::Error>(win32::kErrorFileNotFound));
    EXPECT_EQ(driver.open(kClass, 0), DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled));
    std::filesystem::create_directories(devicePath(kClass).parent_path());
    std::ofstream(devicePath(kClass)).close();
    EXPECT_EQ(openAt(devicePath(kClass)), win32::kErrorGenFailure);
    EXPECT_EQ(driver.open(kClass, 0), DriverErrors::getErrorCode(DriverErrors::DriverFailedToLoad));
}

TEST_F(LinuxDriverApi, VanishingInTheMiddleOfAReportIsARemoval) {
    const ScriptedDevice device(devicePath(kClass), [](const Send& send, const Packet& packet) {
        if (packet[0] != 0)
            send({0, 0, 0, 0, 4, 0});
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

} // namespace
} // namespace orbelantine
