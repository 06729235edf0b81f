#include "hid/channel/WindowsBluetoothHIDDeviceClient.h"
#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/hid/FakeLocalRadioApi.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace orbelantine::test {
namespace {

constexpr std::uint32_t kReload = 0x411008;
const std::wstring kDevice =
    LR"(\\.\USB#VID_8087&PID_0A2B#5&1#{a5dcbf10-6530-11d2-901f-00c04fb951ed})";
const std::wstring kKey =
    LR"(SYSTEM\CurrentControlSet\Enum\USB\VID_8087&PID_0A2B\5&1\Device Parameters)";
const std::string kLogName = "orbelantine::WindowsBluetoothHIDDeviceClient::";

struct TypedClient : WindowsBluetoothHIDDeviceClient {
    using WindowsBluetoothHIDDeviceClient::mHidType;
    using WindowsBluetoothHIDDeviceClient::WindowsBluetoothHIDDeviceClient;
};

class LocalName : public testing::Test {
  protected:
    LocalName() {
        mRadio.instanceIds = {L"", L"BTH\\MS_BTHPAN\\7", L"USB\\VID_8087&PID_0A2B\\5&1",
                              L"USB\\VID_0000&PID_0000\\6"};
    }

    FakeDriverApi mDriver;
    FakeLocalRadioApi mRadio;
};

TEST_F(LocalName, IsWrittenToTheFirstUsbRadioAndReloaded) {
    WindowsBluetoothHIDDeviceClient client(mDriver, mRadio);
    EXPECT_TRUE(client.setLocalDeviceName("Desk"));
    EXPECT_EQ(mDriver.held(), 0u);
    EXPECT_EQ(mRadio.held, 0);
    const FakeDriverApi::Opening device{kDevice, 0x40000000, 0, 3, 0};
    EXPECT_EQ(mDriver.openings, std::vector{device});
    const FakeLocalRadioApi::Value value{kKey, L"Local Name", 3, "Desk"};
    EXPECT_EQ(mRadio.values, std::vector{value});
    const FakeDriverApi::Request reload{kReload, {4, 0, 0, 0}};
    EXPECT_EQ(mDriver.requests, std::vector{reload});
    // None is a USB radio.
    mRadio.instanceIds = {L"BTH\\1", L"usb\\lower-case", L"US"};
    EXPECT_FALSE(client.setLocalDeviceName("Desk"));
    EXPECT_EQ(mDriver.openings.size(), 1u);
}

TEST_F(LocalName, EachFailingStepIsLoggedAndGivesEverythingBack) {
    const std::string path(kDevice.begin(), kDevice.end());
    const std::string key(kKey.begin(), kKey.end());

    const struct {
        const char* call;
        std::string line;
    } cases[] = {
        {"SetupDiGetClassDevs", "getInstanceID() SetupDiGetClassDevs failed with error 7"},
        {"CreateFile", "setLocalDeviceName() CreateFile(" + path + ") failed with error 7"},
        {"RegOpenKeyEx", "setLocalDeviceName() RegOpenKeyEx(" + key + ") failed with error 7"},
        {"RegSetValueEx", "setLocalDeviceName() RegSetValueEx(Desk) failed with error 7"},
        {"DeviceIoControl", "setLocalDeviceName() DeviceIoControl failed with error 7"},
    };

    for (const auto& [call, line] : cases) {
        FakeDriverApi driver;
        FakeLocalRadioApi radio;
        radio.instanceIds = {L"USB\\VID_8087&PID_0A2B\\5&1"};
        WindowsBluetoothHIDDeviceClient client(driver, radio);
        driver.failures[call] = 7;
        radio.failures[call] = 7;
        CapturedLog log(kLogError, kLogName);
        EXPECT_FALSE(client.setLocalDeviceName("Desk")) << call;
        EXPECT_EQ(log.told(), Texts{"error " + line}) << call;
        EXPECT_EQ(driver.held(), 0u) << call;
        EXPECT_EQ(radio.held, 0) << call;
    }
}

TEST_F(LocalName, IsRestoredToTheComputersOwnOnlyForTypeZero) {
    mRadio.computerName = L"HOME-PC";
    WindowsBluetoothHIDDeviceClient(mDriver, mRadio).restoreLocalDeviceName();
    EXPECT_TRUE(mRadio.values.empty());
    CapturedLog log(kLogInfo, kLogName);
    TypedClient client(mDriver, mRadio);
    client.mHidType = 0;
    (void)log.told();
    client.restoreLocalDeviceName();
    EXPECT_EQ(mRadio.values.at(0).bytes, "HOME-PC");
    EXPECT_EQ(log.told(),
              (Texts{"info restoreLocalDeviceName: Reset device name back to HOME-PC"}));
    mRadio.instanceIds = {};
    client.restoreLocalDeviceName();
    EXPECT_EQ(log.told(),
              (Texts{"error restoreLocalDeviceName: Failed to reset device name to HOME-PC"}));
}

TEST_F(LocalName, RadioTellsItsOwnName) {
    mRadio.radioName = L"Radio 1";
    WindowsBluetoothHIDDeviceClient client(mDriver, mRadio);
    std::wstring name = L"before";
    EXPECT_TRUE(client.getRadioDeviceName(name));
    EXPECT_EQ(name, L"Radio 1");
    for (const char* call : {"BluetoothGetRadioInfo", "BluetoothFindFirstRadio"}) {
        mRadio.failures[call] = 259;
        EXPECT_FALSE(client.getRadioDeviceName(name)) << call;
        EXPECT_EQ(mRadio.held, 0) << call;
    }
}

TEST(HidType, IsTwoWhateverTheDriverSays) {
    FakeLocalRadioApi radio;
    FakeDriverApi without;
    EXPECT_EQ(WindowsBluetoothHIDDeviceClient(without, radio).getType(), 2u);
    FakeDriverApi with;
    with.simulateHidDriver();
    with.type = 1;
    EXPECT_EQ(WindowsBluetoothHIDDeviceClient(with, radio).getType(), 2u);
    const FakeDriverApi::Request asked{0x220004, {}};
    EXPECT_EQ(with.requests, std::vector{asked});
    EXPECT_EQ(with.held(), 0u);
}

} // namespace
} // namespace orbelantine::test
