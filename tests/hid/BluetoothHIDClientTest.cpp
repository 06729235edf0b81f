#include "hid/link/BluetoothHIDClient.h"

#include "core/common/OSAL.h"
#include "hid/channel/HIDDeviceClient.h"
#include "hid/channel/IBluetoothHIDDeviceClientDummy.h"
#include "hid/channel/IHIDDeviceClientDummy.h"
#include "hid/channel/WindowsBluetoothHIDDeviceClient.h"
#include "hid/link/IBluetoothHIDClientDummy.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace orbelantine::test {
namespace {

using Mouse = IInputMediaBufferMouse;
using Bytes = FakeHidDevice::Bytes;

constexpr const char* kPhone = "01:23:45:67:89:AB";

boost::shared_ptr<IMediaBuffer> mouseBuffer(std::uint8_t type, std::int32_t x = 0) {
    return boost::make_shared<Mouse>(x, 0, type, false);
}

class BluetoothHidClient : public testing::Test {
  protected:
    ChainScript mScript;
    boost::shared_ptr<FakeHidDevice> mDevice = boost::make_shared<FakeHidDevice>(mScript);
    FactoryOverride<IHIDDeviceClient> mDevices{"HIDDeviceClient", mDevice};
    BluetoothHIDClient mClient{KVStore()};
};

TEST_F(BluetoothHidClient, SendsTheRelativeReportOfEachInputAndForgetsButtonsOnDisconnect) {
    CapturedLog log(kLogError);
    mClient.onFrame(mouseBuffer(Mouse::LeftDown));
    mClient.disconnect();
    mClient.onFrame(boost::make_shared<IMediaBuffer>());
    mClient.onFrame(mouseBuffer(Mouse::Move, 5));
    EXPECT_EQ(mDevice->reports,
              (std::vector<Bytes>{{0xA1, 1, 1, 0, 0, 0, 0, 0, 0}, {0xA1, 1, 0, 5, 0, 0, 0, 0, 0}}));
    EXPECT_EQ(log.told(),
              Texts{"error orbelantine::BluetoothHIDClient::onFrame() error parsing event."});
}

TEST_F(BluetoothHidClient, ForwardsToTheDeviceAndRelaysItsDisconnection) {
    const error_code failure(7, boost::system::generic_category());
    EXPECT_EQ(mClient.connect(kPhone), error_code());
    EXPECT_TRUE(mClient.isConnected());
    mScript.onConnect = [&] { return failure; };
    EXPECT_EQ(mClient.connect(kPhone), failure);
    EXPECT_FALSE(mClient.isConnected());
    mScript.unplugResult = failure;
    EXPECT_EQ(mClient.virtualCableUnplug(), failure);
    mClient.forceDisconnect();
    mClient.disconnect();
    const std::string connect = std::string("connect ") + kPhone;
    EXPECT_EQ(mScript.journal.take(), (Names{connect, connect, "unplug", "force", "disconnect"}));
    std::vector<error_code> raised;
    mClient.onDisconnected.connect([&](error_code ec) { raised.push_back(ec); });
    mDevice->onDisconnected(failure);
    EXPECT_EQ(raised, std::vector{failure});
}

template <class Interface>
boost::shared_ptr<Interface> made(const char* name, const std::string& hint) {
    return osalCreate<Interface>(OSALFactory::instance(), name, KVStore(), hint);
}

template <class Real, class Interface>
void expectRealAndDummy(const char* name) {
    EXPECT_NE(dynamic_cast<Real*>(made<Interface>(name, "").get()), nullptr) << name;
    const auto dummy = made<Interface>(name, std::string(name) + "::Dummy");
    EXPECT_NE(dynamic_cast<typename Interface::Dummy*>(dummy.get()), nullptr) << name;
}

TEST(HidFactory, GivesTheRealClientsAndTheirDummiesByName) {
    expectRealAndDummy<HIDDeviceClient, IHIDDeviceClient>("IHIDDeviceClient");
    expectRealAndDummy<BluetoothHIDClient, IBluetoothHIDClient>("IBluetoothHIDClient");
    expectRealAndDummy<WindowsBluetoothHIDDeviceClient, IBluetoothHIDDeviceClient>(
        "IBluetoothHIDDeviceClient");
}

} // namespace
} // namespace orbelantine::test
