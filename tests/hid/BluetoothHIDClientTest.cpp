#include "hid/BluetoothHIDClient.h"

#include "hid/IBluetoothHIDClientDummy.h"
#include "hid/IHIDDeviceClient.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

using Mouse = IInputMediaBufferMouse;
using Bytes = std::vector<std::uint8_t>;
using test::CapturedLog;

constexpr const char* kAddress = "01:23:45:67:89:AB";

/// Notes what it is asked.
class RecordingDevice final : public IHIDDeviceClient {
  public:
    error_code connect(const std::string& address) override {
        calls.push_back("connect " + address);
        return result;
    }

    void disconnect() override { calls.emplace_back("disconnect"); }

    void forceDisconnect() override { calls.emplace_back("force"); }

    bool isConnected() override { return true; }

    void sendReport(const std::uint8_t* data, std::size_t size) override {
        reports.emplace_back(data, data + size);
    }

    error_code virtualCableUnplug() override {
        calls.emplace_back("unplug");
        return result;
    }

    error_code result{7, boost::system::generic_category()};
    test::Names calls;
    std::vector<Bytes> reports;
};

boost::shared_ptr<IMediaBuffer> mouseBuffer(std::uint8_t type, std::int32_t x = 0) {
    return boost::make_shared<Mouse>(x, 0, type, false);
}

class BluetoothHidClient : public testing::Test {
  protected:
    boost::shared_ptr<RecordingDevice> mDevice = boost::make_shared<RecordingDevice>();
    test::FactoryOverride<IHIDDeviceClient> mDevices{"HIDDeviceClient",
                                                     [this](const KVStore&) { return mDevice; }};
    BluetoothHIDClient mClient{KVStore()};
};

TEST_F(BluetoothHidClient, SendsTheRelativeReportOfEachFrameAndForgetsButtonsOnDisconnect) {
    mClient.onFrame(mouseBuffer(Mouse::LeftDown));
    mClient.disconnect();
    mClient.onFrame(mouseBuffer(Mouse::Move, 5));
    EXPECT_EQ(mDevice->reports,
              (std::vector<Bytes>{{0xA1, 1, 1, 0, 0, 0, 0, 0, 0}, {0xA1, 1, 0, 5, 0, 0, 0, 0, 0}}));
}

TEST_F(BluetoothHidClient, FrameThatIsNoInputIsLoggedAndNotSent) {
    CapturedLog log(kLogError);
    mClient.onFrame(boost::make_shared<IMediaBuffer>());
    EXPECT_EQ(log.take(),
              (std::vector<CapturedLog::Line>{
                  {kLogError, "orbelantine::BluetoothHIDClient::onFrame() error parsing event."}}));
    EXPECT_TRUE(mDevice->reports.empty());
}

TEST_F(BluetoothHidClient, ForwardsToTheDeviceAndRelaysItsDisconnection) {
    EXPECT_EQ(mClient.connect(kAddress), mDevice->result);
    EXPECT_EQ(mClient.virtualCableUnplug(), mDevice->result);
    mClient.forceDisconnect();
    mClient.disconnect();
    EXPECT_TRUE(mClient.isConnected());
    EXPECT_EQ(mDevice->calls,
              (test::Names{std::string("connect ") + kAddress, "unplug", "force", "disconnect"}));
    std::vector<error_code> raised;
    mClient.onDisconnected.connect([&](error_code ec) { raised.push_back(ec); });
    mDevice->onDisconnected(mDevice->result);
    EXPECT_EQ(raised, std::vector{mDevice->result});
}

TEST(BluetoothHidClientFactory, GivesTheRealClientAndTheDummyByName) {
    const auto create = [](const char* hint) {
        return osalCreate<IBluetoothHIDClient>(OSALFactory::instance(), "IBluetoothHIDClient",
                                               KVStore(), hint);
    };
    EXPECT_NE(dynamic_cast<BluetoothHIDClient*>(create("").get()), nullptr);
    const auto dummy = create("IBluetoothHIDClient::Dummy");
    EXPECT_EQ(dummy->connect(kAddress), error_code());
    EXPECT_FALSE(dummy->isConnected());
}

} // namespace
} // namespace orbelantine
