#include "bluetooth/DriverApi.h"

#include "bluetooth/BluetoothDriver.h"
#include "bluetooth/DriverProtocol.h"
#include "bluetooth/WindowsBluetoothHIDDevice.h"
#include "bluetooth/linux/DeviceFolder.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "tests/bluetooth/linux/ScriptedDevice.h"

#include <pthread.h>
#include <unistd.h>

#include <fstream>
#include <future>
#include <utility>

namespace orbelantine::test {
namespace {

using Packet = ScriptedDevice::Packet;
using Send = ScriptedDevice::Send;

namespace fs = std::filesystem;

const Guid& kHidClass = driver::kHidInterfaces[0];
constexpr std::uint32_t kCode = 0x220008;

class LinuxDriverApi : public DeviceFolderFixture {
  protected:
    ~LinuxDriverApi() override {
        if (mFile != DriverApi::kInvalidHandle)
            mApi.closeHandle(mFile);
    }

    void open() {
        ASSERT_EQ(mApi.createFile(devicePath(kHidClass).wstring(), 0, 0, 0, 0, mFile), 0u);
    }

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
    const ScriptedDevice device(devicePath(kHidClass), [&](const Send& send, const Packet& packet) {
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
    const ScriptedDevice device(devicePath(kHidClass), [&](const Send& send, const Packet&) {
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

TEST_F(LinuxDriverApi, CancellingWakesWhatHangsAndFailsWhatComes) {
    std::promise<void> arrived;
    std::promise<void> mayEnd;
    const ScriptedDevice device(devicePath(kHidClass), [&](auto&&...) {
        arrived.set_value();
        mayEnd.get_future().wait();
        return false;
    });
    open();
    std::uint32_t output = 0;
    auto asking = std::async(std::launch::async, [&] { return ask(output); });
    arrived.get_future().wait();
    // Until the device has all that it takes unread, a write waits.
    std::promise<void> first;
    auto writing = std::async(std::launch::async, [&] {
        DriverApi::Error error = write(Packet(1000, 1));
        first.set_value();
        while (!error)
            error = write(Packet(1000, 1));
        return error;
    });
    first.get_future().wait();
    mApi.cancelRequests(mFile);
    EXPECT_EQ(asking.get(), win32::kErrorDeviceNotConnected);
    EXPECT_EQ(writing.get(), win32::kErrorDeviceNotConnected);
    EXPECT_EQ(ask(output), win32::kErrorDeviceNotConnected);
    mayEnd.set_value();
}

TEST_F(LinuxDriverApi, OpeningTellsWhatIsMissing) {
    const fs::path path = devicePath(kHidClass);
    const auto openAt = [&](const fs::path& place) {
        return mApi.createFile(place.wstring(), 0, 0, 0, 0, mFile);
    };
    const auto openDriver = [] { return BluetoothDriver(false).open(kHidClass, 0); };
    EXPECT_EQ(openAt(devicePath(kHidClass, std::string(200, 'n'))), win32::kErrorFilenameTooLong);
    EXPECT_EQ(openAt(path), static_cast<DriverApi::Error>(win32::kErrorFileNotFound));
    EXPECT_EQ(openDriver(), DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled));
    fs::create_directories(path.parent_path());
    std::ofstream(path).close();
    EXPECT_EQ(openAt(path), win32::kErrorGenFailure);
    EXPECT_EQ(openDriver(), DriverErrors::getErrorCode(DriverErrors::DriverFailedToLoad));
    fs::remove(path);
    // A device that accepts nobody is busy once its queue is full.
    const FileDescriptor listener(ScriptedDevice::listenAt(path));
    std::vector<DriverApi::Handle> opened;
    DriverApi::Error error = 0;
    while (!(error = openAt(path)))
        opened.push_back(std::exchange(mFile, DriverApi::kInvalidHandle));
    EXPECT_EQ(error, win32::kErrorBusy);
    for (const DriverApi::Handle file : opened)
        mApi.closeHandle(file);
}

TEST_F(LinuxDriverApi, VanishingInTheMiddleOfAReportIsARemoval) {
    const ScriptedDevice device(devicePath(kHidClass), [](const Send& send, const Packet& packet) {
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
    {
        const ScriptedDevice device(devicePath(kHidClass), [](auto&&...) { return true; });
        open();
        DriverApi::NotifyFilter filter{1, 0, DriverApi::kNotifyFilterDeviceHandle, 0, mFile, {}};
        DriverApi::Handle notification = 0;
        EXPECT_EQ(mApi.registerNotification(filter, &calls, count, notification),
                  DriverApi::Error{31});
        filter.size = sizeof(filter);
        ASSERT_EQ(mApi.registerNotification(filter, &calls, count, notification), 0u);
        mApi.unregisterNotification(notification);
    }
    EXPECT_EQ(calls, 0);
}

const Guid& kClass = driver::kHandsfreeInterface;

using Paths = std::vector<std::wstring>;

class DeviceFolder : public DeviceFolderFixture {
  protected:
    [[nodiscard]] Paths list(bool presentOnly) const {
        Paths paths;
        EXPECT_EQ(listDevices(kClass, presentOnly, paths), 0u);
        return paths;
    }
};

TEST_F(DeviceFolder, EnvironmentNamesTheFolder) {
    EXPECT_EQ(deviceFolder(), mFolder);
    unsetenv("ORBELANTINE_DEVICE_DIR");
    setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
    EXPECT_EQ(deviceFolder(), "/run/user/7/orbelantine/devices");
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(deviceFolder(), "/tmp/orbelantine-" + std::to_string(getuid()) + "/devices");
}

TEST_F(DeviceFolder, SocketsArePresentAndPlainFilesOnlyInstalled) {
    EXPECT_EQ(list(false), Paths()) << "there is no folder of the class";
    // Shown whatever the locale; tests run in the "C" one.
    const fs::path socket = devicePath(kClass, "b \xC3\xA9\xF0\x9F\x93\xB1");
    const std::wstring shown = devicePath(kClass, "b ").wstring() + L"\u00E9\U0001F4F1";
    const ScriptedDevice device(socket, [](auto&&...) { return true; });
    const fs::path file = devicePath(kClass, "a");
    std::ofstream(file).close();
    fs::create_directory(devicePath(kClass, "folder"));
    // Not a text in UTF-8.
    std::ofstream(devicePath(kClass, "\xFF")).close();
    EXPECT_EQ(list(true), Paths{shown});
    EXPECT_EQ(list(false), (Paths{file.wstring(), shown}));
    EXPECT_EQ(deviceFile(shown), socket);
    std::ofstream(mFolder / classFolderName(kHidClass)).close();
    Paths paths;
    EXPECT_EQ(listDevices(kHidClass, true, paths), win32::kErrorGenFailure) << "it is no folder";
}

} // namespace
} // namespace orbelantine::test
