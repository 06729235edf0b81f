#include "hid/reports/HIDReportProvider.h"

#include "avstack/IInputMediaBufferMouse.h"
#include "core/common/config/KVStore.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace orbelantine {

namespace {

using test::CapturedLog;
using Bytes = test::FakeHidDevice::Bytes;
using Lines = std::vector<CapturedLog::Line>;

/// Takes every report for itself.
class Interceptor : public HIDReportProvider {
  public:
    using HIDReportProvider::HIDReportProvider;

    void dispatchReport(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        buffers.push_back(buffer);
    }

    [[nodiscard]] std::vector<std::int32_t> lastMouse() const {
        const auto& event =
            *static_cast<const IInputMediaBufferMouse::EventData*>(buffers.back()->getRawBuffer());
        return {event.x, event.y, event.type};
    }

    std::vector<boost::shared_ptr<IMediaBuffer>> buffers;
};

class HidReportProvider : public ::testing::Test {
  protected:
    HidReportProvider() {
        provider.setDevice(device);
        interceptor.setDevice(device);
    }

    HIDReportProvider provider{KVStore()};
    Interceptor interceptor{KVStore()};
    test::ChainScript script;
    boost::shared_ptr<test::FakeHidDevice> device = boost::make_shared<test::FakeHidDevice>(script);
};

TEST_F(HidReportProvider, SendsEachEventAsARelativeReport) {
    provider.sendMouseMove(-1, 300);
    provider.sendMouseLeftClick(true);
    provider.sendMouseRightClick(true);
    provider.sendMouseLeftClick(false);
    provider.sendMouseScroll(-3);
    provider.sendKey(30, true);
    provider.sendKey(30, false);
    EXPECT_EQ(device->reports, (std::vector<Bytes>{{0xA1, 1, 0, 0xFF, 0xFF, 0x2C, 1, 0, 0},
                                                   {0xA1, 1, 1, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 1, 3, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 1, 2, 0, 0, 0, 0, 0, 0},
                                                   // A wheel of 0, whatever the amount.
                                                   {0xA1, 1, 2, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0},
                                                   {0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0}}));
}

TEST_F(HidReportProvider, ResetForgetsButtonsAndSendsNothing) {
    provider.sendMouseLeftClick(true);
    provider.resetState();
    EXPECT_EQ(device->reports.size(), 1U);
    provider.sendMouseRightClick(true);
    EXPECT_EQ(device->reports.back(), (Bytes{0xA1, 1, 2, 0, 0, 0, 0, 0, 0}));
}

TEST_F(HidReportProvider, WithoutDeviceOrTranslationOnlyLogs) {
    CapturedLog log(kLogWarning);
    provider.sendKey(84, true);
    EXPECT_EQ(log.take().back(),
              (CapturedLog::Line{kLogWarning, "failed disptching report - conversion failed"}));
    provider.setDevice(nullptr);
    provider.sendMouseMove(1, 2);
    EXPECT_EQ(log.take(), (Lines{{kLogError, "No device defined!"}}));
    EXPECT_TRUE(device->reports.empty());
}

TEST_F(HidReportProvider, SubclassInterceptsEveryReportInReusedBuffers) {
    interceptor.sendMouseMove(1, 2);
    interceptor.sendMouseLeftClick(true);
    interceptor.sendKey(30, true);
    interceptor.sendKey(31, true);
    EXPECT_TRUE(device->reports.empty());
    ASSERT_EQ(interceptor.buffers.size(), 4U);
    EXPECT_EQ(interceptor.buffers.at(0), interceptor.buffers.at(1));
    EXPECT_EQ(interceptor.buffers.at(2), interceptor.buffers.at(3));
}

TEST_F(HidReportProvider, ClickKeepsTheYOfTheLastMoveAndScrollTravelsInXWithATypeByItsSign) {
    using Event = std::vector<std::int32_t>;
    interceptor.sendMouseMove(1, 2);
    interceptor.sendMouseRightClick(false);
    EXPECT_EQ(interceptor.lastMouse(), (Event{0, 2, 3}));
    interceptor.sendMouseScroll(-3);
    EXPECT_EQ(interceptor.lastMouse(), (Event{-3, 0, 6}));
    interceptor.sendMouseScroll(0);
    EXPECT_EQ(interceptor.lastMouse(), (Event{0, 0, 5}));
    interceptor.sendMouseScroll(3);
    EXPECT_EQ(interceptor.lastMouse(), (Event{3, 0, 5}));
}

} // namespace

} // namespace orbelantine
