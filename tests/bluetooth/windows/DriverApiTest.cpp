#include "bluetooth/DriverApi.h"

#include "bluetooth/BluetoothDriver.h"
#include "bluetooth/DriverProtocol.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/ErrorCode.h"

#include <boost/filesystem/operations.hpp>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace orbelantine {
namespace {

using Error = DriverApi::Error;

class WindowsDriverApi : public testing::Test {
  protected:
    static constexpr std::uint32_t kCreateAlways = 2;

    WindowsDriverApi()
        : mPath(boost::filesystem::temp_directory_path() /
                boost::filesystem::unique_path("orbelantine-%%%%%%%%")) {}

    ~WindowsDriverApi() override {
        boost::system::error_code ignored;
        boost::filesystem::remove(mPath, ignored);
    }

    Error open(std::uint32_t disposition, DriverApi::Handle& file) {
        return mApi.createFile(mPath.wstring(), DriverApi::kGenericRead | DriverApi::kGenericWrite,
                               0, disposition, 0, file);
    }

    DriverApi& mApi = DriverApi::system();
    boost::filesystem::path mPath;
};

TEST_F(WindowsDriverApi, ClassWithoutDevicesEndsAtOnceAndIsADriverThatIsNotInstalled) {
    DriverApi::Handle list = DriverApi::kInvalidHandle;
    const Guid& guid = driver::kHidInterfaces[0];
    ASSERT_EQ(mApi.setupDiGetClassDevs(
                  guid, DriverApi::kDigcfDeviceInterface | DriverApi::kDigcfPresent, list),
              0u);
    DriverApi::InterfaceData data;
    EXPECT_EQ(mApi.setupDiEnumDeviceInterfaces(list, guid, 0, data),
              static_cast<Error>(win32::kErrorNoMoreItems));
    mApi.setupDiDestroyDeviceInfoList(list);
    void* memory = nullptr;
    ASSERT_EQ(mApi.localAlloc(100, memory), 0u);
    static_cast<char*>(memory)[99] = 1;
    mApi.localFree(memory);
    EXPECT_EQ(BluetoothDriver(false).open(guid, driver::kUnbuffered),
              DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled));
}

TEST_F(WindowsDriverApi, FileTakesWritesAndIsNoDevice) {
    DriverApi::Handle file = 77;
    EXPECT_EQ(open(DriverApi::kOpenExisting, file), static_cast<Error>(win32::kErrorFileNotFound));
    EXPECT_EQ(file, 77);
    ASSERT_EQ(open(kCreateAlways, file), 0u);
    std::uint32_t count = 0;
    EXPECT_EQ(mApi.writeFile(file, "report", 6, count), 0u);
    EXPECT_EQ(count, 6u);
    std::uint32_t answer = 0;
    EXPECT_NE(mApi.deviceIoControl(file, driver::kGetVersion, nullptr, 0, &answer, 2, count), 0u);
    DriverApi::NotifyFilter filter{};
    filter.size = sizeof(filter);
    filter.type = DriverApi::kNotifyFilterDeviceHandle;
    filter.target = file;
    DriverApi::Handle notification = 77;
    EXPECT_NE(mApi.registerNotification(
                  filter, this, [](void*, std::uint32_t) { return Error{}; }, notification),
              0u);
    EXPECT_EQ(notification, 77);
    mApi.closeHandle(file);
    EXPECT_EQ(mApi.writeFile(file, "late", 4, count),
              static_cast<Error>(win32::kErrorInvalidHandle));
    std::string text;
    std::ifstream(mPath.string()) >> text;
    EXPECT_EQ(text, "report");
}

} // namespace
} // namespace orbelantine
