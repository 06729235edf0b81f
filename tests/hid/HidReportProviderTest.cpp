#include "hid/HIDReportProvider.h"

#include "avstack/IInputMediaBufferMouse.h"
#include "core/common/KVStore.h"
#include "hid/IHIDDeviceClient.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace orbelantine {

namespace {

using test::CapturedLog;
using Bytes = std::vector<std::uint8_t>;
using Lines = std::vector<CapturedLog::Line>;

/// A device that keeps what it is sent.
class RecordingDevice : public IHIDDeviceClient {
  public:
    error_code connect(const std::string&) override { return {}; }

    void disconnect() override {}

    void forceDisconnect() override {}

    bool isConnected() override { return true; }

    void sendReport(const std::uint8_t* data, std::size_t size) override {
        reports.emplace_back(data, data + size);
    }

    error_code virtualCableUnplug() override { return {}; }

    std::vector<Bytes> reports;
};

class HidReportProvider : public ::testing::Test {
  protected:
    HidReportProvider() { provider.setDevice(device); }

    HIDReportProvider provider{KVStore()};
    boost::shared_ptr<RecordingDevice> device = boost::make_shared<RecordingDevice>();
};

TEST_F(HidReportProvider, SendsRelativeMouseReports) {
    provider.sendMouseMove(-1, 300);
    provider.sendMouseLeftClick(true);
    provider.sendMouseRightClick(true);
    provider.sendMouseLeftClick(false);
    EXPECT_EQ(device->reports, (std::vector<Bytes>{{0xA1, 1, 0, 0xFF, 0xFF, 0x2C, 1, 0, 0},
                                                   {0xA1, 1, 1, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 1, 3, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 1, 2, 0, 0, 0, 0, 0, 0}}));
}

TEST_F(HidReportProvider, SendsKeys) {
    provider.sendKey(30, true);
    provider.sendKey(30, false);
    EXPECT_EQ(device->reports, (std::vector<Bytes>{{0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0},
                                                   {0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0}}));
}

TEST_F(HidReportProvider, ScrollSendsAWheelOfZero) {
    provider.sendMouseMove(3, 4);
    provider.sendMouseScroll(-3);
    EXPECT_EQ(device->reports.back(), (Bytes{0xA1, 1, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportProvider, ResetForgetsButtonsAndSendsNothing) {
    provider.sendMouseLeftClick(true);
    provider.resetState();
    EXPECT_EQ(device->reports.size(), 1U);
    provider.sendMouseRightClick(true);
    EXPECT_EQ(device->reports.back(), (Bytes{0xA1, 1, 2, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportProvider, WithoutDeviceOnlyLogs) {
    provider.setDevice(nullptr);
    CapturedLog log(kLogDebug);
    provider.sendMouseMove(1, 2);
    EXPECT_EQ(log.take(), (Lines{{kLogError, "No device defined!"}}));
    EXPECT_TRUE(device->reports.empty());
}

TEST_F(HidReportProvider, UntranslatedKeySendsNothing) {
    CapturedLog log(kLogWarning);
    provider.sendKey(84, true);
    EXPECT_EQ(log.take().back(),
              (CapturedLog::Line{kLogWarning, "failed disptching report - conversion failed"}));
    EXPECT_TRUE(device->reports.empty());
}

/// A subclass that takes every report for itself.
class Interceptor : public HIDReportProvider {
  public:
    using HIDReportProvider::HIDReportProvider;

    void dispatchReport(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        buffers.push_back(buffer);
    }

    [[nodiscard]] const IInputMediaBufferMouse::EventData& lastMouse() const {
        return *static_cast<const IInputMediaBufferMouse::EventData*>(
            buffers.back()->getRawBuffer());
    }

    std::vector<boost::shared_ptr<IMediaBuffer>> buffers;
};

TEST_F(HidReportProvider, SubclassInterceptsEveryReportInReusedBuffers) {
    Interceptor interceptor{KVStore()};
    interceptor.setDevice(device);
    interceptor.sendMouseMove(1, 2);
    interceptor.sendMouseLeftClick(true);
    interceptor.sendKey(30, true);
    interceptor.sendKey(31, true);

    EXPECT_TRUE(device->reports.empty());
    ASSERT_EQ(interceptor.buffers.size(), 4U);
    EXPECT_EQ(interceptor.buffers.at(0), interceptor.buffers.at(1));
    EXPECT_EQ(interceptor.buffers.at(2), interceptor.buffers.at(3));
}

TEST_F(HidReportProvider, ScrollTravelsInXWithATypeByItsSign) {
    Interceptor interceptor{KVStore()};
    interceptor.sendMouseMove(1, 2);
    for (const auto& [amount, type] :
         std::vector<std::pair<std::int32_t, std::uint8_t>>{{-3, 6}, {0, 5}, {3, 5}}) {
        interceptor.sendMouseScroll(amount);
        EXPECT_EQ(interceptor.lastMouse().x, amount);
        EXPECT_EQ(interceptor.lastMouse().y, 0);
        EXPECT_EQ(interceptor.lastMouse().type, type);
    }
}

TEST_F(HidReportProvider, ClickLeavesTheYOfTheLastMove) {
    Interceptor interceptor{KVStore()};
    interceptor.sendMouseMove(1, 2);
    interceptor.sendMouseRightClick(false);
    EXPECT_EQ(interceptor.lastMouse().x, 0);
    EXPECT_EQ(interceptor.lastMouse().y, 2);
    EXPECT_EQ(interceptor.lastMouse().type, 3);
}

} // namespace

} // namespace orbelantine
