#include "core/common/ErrorAreas.h"
#include "hid/BluetoothHIDClientManager.h"
#include "tests/support/CapturedLog.h"
#include "tests/system/linux/Session.h"
#include "tools/soak/PhoneThread.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orbelantine {
namespace {

using phone::PhoneThread;
using Seen = PhoneThread::Seen;

/// An input thread waits this long for its event.
constexpr std::chrono::milliseconds kInputWait(20);
/// Each request of a reconnect takes longer than that.
constexpr std::chrono::milliseconds kLate(50);
/// Three letters, down and up.
constexpr int kEvents = 6;

TEST(SlowReconnect, FreesTheInputThreadAndSendsAllInOrderLate) {
    phone::Faults faults;
    faults.late = kLate;
    PhoneThread phone(faults);
    test::CapturedLog log(kLogError);
    const auto surface = boost::make_shared<test::FakeInputContext>();
    BluetoothHIDClientManager manager(KVStore(), IClock::system(), kInputWait);
    manager.setInputContext(surface);
    const auto start = [&](const auto& done) { manager.start("00:11:22:33:44:55", done); };
    EXPECT_EQ(test::await([&](const auto& done) { manager.init(done); }), error_code());
    EXPECT_EQ(test::await(start), error_code());
    manager.pauseConnection();
    // Waits for the pause.
    EXPECT_EQ(test::await(start), HidErrors::getErrorCode(HidErrors::InvalidState));
    (void)log.take();
    for (const std::uint32_t scanCode : {test::kScanA, test::kScanB, test::kScanC})
        for (const bool down : {true, false})
            surface->simulateKey(down, 0, scanCode);
    EXPECT_TRUE(phone.await([](const Seen& seen) { return seen.tally.reports == kEvents; }));
    EXPECT_EQ(phone.seen().text, "abc");
    EXPECT_EQ(test::await([&](const auto& done) { manager.cleanup(done); }), error_code());
    const auto lines = log.take();
    const auto waitedTooMuch = [](const test::CapturedLog::Line& line) {
        return line.text.ends_with("waited too much, returning");
    };
    EXPECT_FALSE(lines.empty());
    EXPECT_TRUE(std::ranges::all_of(lines, waitedTooMuch));
}

} // namespace
} // namespace orbelantine
