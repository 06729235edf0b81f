#include "hid/reports/HIDReportProvider.h"

#include "avstack/IInputMediaBufferMouse.h"
#include "core/common/config/KVStore.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace orbelantine::test {

namespace {

using Bytes = FakeHidDevice::Bytes;

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
    ChainScript script;
    boost::shared_ptr<FakeHidDevice> device = boost::make_shared<FakeHidDevice>(script);
};

TEST_F(HidReportProvider, SendsEachEventAsARelativeReportUntilResetForgetsTheButtons) {
    provider.sendMouseMove(-1, 300);
    provider.sendMouseLeftClick(true);
    provider.sendMouseRightClick(true);
    provider.sendMouseLeftClick(false);
    provider.sendMouseScroll(-3);
    provider.sendKey(30, true);
    provider.sendKey(30, false);
    provider.resetState();
    provider.sendMouseLeftClick(true);
    EXPECT_EQ(device->reports, (std::vector<Bytes>{{0xA1, 1, 0, 0xFF, 0xFF, 0x2C, 1, 0, 0},
                                                   {0xA1, 1, 1, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 1, 3, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 1, 2, 0, 0, 0, 0, 0, 0},
                                                   // A wheel of 0, whatever the amount.
                                                   {0xA1, 1, 2, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0},
                                                   {0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0},
                                                   {0xA1, 1, 1, 0, 0, 0, 0, 0, 0}}));
}

TEST_F(HidReportProvider, WithoutDeviceOrTranslationOnlyLogs) {
    CapturedLog log(kLogWarning);
    provider.sendKey(84, true);
    EXPECT_EQ(log.told().back(), "warning failed disptching report - conversion failed");
    provider.setDevice(nullptr);
    provider.sendMouseMove(1, 2);
    EXPECT_EQ(log.told(), Texts{"error No device defined!"});
    EXPECT_TRUE(device->reports.empty());
}

TEST_F(HidReportProvider, SubclassInterceptsEveryReportInReusedBuffers) {
    using Event = std::vector<std::int32_t>;
    interceptor.sendMouseMove(1, 2);
    interceptor.sendMouseRightClick(false);
    EXPECT_EQ(interceptor.lastMouse(), (Event{0, 2, 3})) << "y stays the last move's";
    for (const std::int32_t amount : {-3, 0, 3}) {
        interceptor.sendMouseScroll(amount);
        EXPECT_EQ(interceptor.lastMouse(), (Event{amount, 0, amount < 0 ? 6 : 5}));
    }
    interceptor.sendKey(30, true);
    interceptor.sendKey(31, true);
    const auto& buffers = interceptor.buffers;
    ASSERT_EQ(buffers.size(), 7U);
    EXPECT_EQ(buffers[0], buffers[4]);
    EXPECT_EQ(buffers[5], buffers[6]);
    EXPECT_TRUE(device->reports.empty());
}

} // namespace

} // namespace orbelantine::test
