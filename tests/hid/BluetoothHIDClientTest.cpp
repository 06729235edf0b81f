#include "hid/link/BluetoothHIDClient.h"

#include "tests/hid/HidChainFixture.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

using Mouse = IInputMediaBufferMouse;
using Bytes = test::FakeHidDevice::Bytes;
using test::CapturedLog;

constexpr const char* kPhone = "01:23:45:67:89:AB";

boost::shared_ptr<IMediaBuffer> mouseBuffer(std::uint8_t type, std::int32_t x = 0) {
    return boost::make_shared<Mouse>(x, 0, type, false);
}

class BluetoothHidClient : public testing::Test {
  protected:
    test::ChainScript mScript;
    boost::shared_ptr<test::FakeHidDevice> mDevice =
        boost::make_shared<test::FakeHidDevice>(mScript);
    test::FactoryOverride<IHIDDeviceClient> mDevices{"HIDDeviceClient",
                                                     [this](const KVStore&) { return mDevice; }};
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
    EXPECT_EQ(log.take(),
              (std::vector<CapturedLog::Line>{
                  {kLogError, "orbelantine::BluetoothHIDClient::onFrame() error parsing event."}}));
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
    EXPECT_EQ(mScript.journal.take(),
              (test::Names{connect, connect, "unplug", "force", "disconnect"}));
    std::vector<error_code> raised;
    mClient.onDisconnected.connect([&](error_code ec) { raised.push_back(ec); });
    mDevice->onDisconnected(failure);
    EXPECT_EQ(raised, std::vector{failure});
}

} // namespace
} // namespace orbelantine
