#include "bluetooth/BluetoothPeer.h"

#include "bluetooth/IBluetoothService.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

namespace orbelantine::test {
namespace {

using namespace std::chrono_literals;

const CMacAddress kAddress(std::uint64_t{0x0123456789AB});

TEST(BluetoothPeer, IsStaleFromThirtySecondsOnOrOnceMarkedUntilTouched) {
    HandClock clock;
    // A tick clock that has only begun.
    clock.advance(1s);
    BluetoothPeer peer(kAddress, clock);
    peer.markStale();
    EXPECT_TRUE(peer.isStale());
    peer.touch();
    clock.advance(30s - 100ns);
    EXPECT_FALSE(peer.isStale());
    clock.advance(100ns);
    EXPECT_TRUE(peer.isStale());
    peer.update(L"phone", 0x200, true);
    EXPECT_TRUE(peer.isStale()) << "an update is no sighting";
    peer.touch();
    EXPECT_FALSE(peer.isStale());
}

TEST(BluetoothPeer, TypeIsTheMajorDeviceClass) {
    for (std::uint32_t major = 0; major < 0x20; ++major) {
        const BluetoothPeer peer(kAddress, L"", 0xFFE0FF | major << 8, false);
        EXPECT_EQ(peer.deviceType(), major <= 9 ? static_cast<int>(major) + 1 : 0) << major;
    }
}

TEST(BluetoothPeer, ConstructorsFillWhatTheyAreNotGivenAndAllButTheLastSightingMakesEquality) {
    const BluetoothPeer named(std::string("a\xC3\xA4"));
    EXPECT_TRUE(named == BluetoothPeer(CMacAddress(), L"a\u00C3\u00A4", 0, false));
    EXPECT_TRUE(named == BluetoothPeer(std::wstring(L"a\u00C3\u00A4")));
    EXPECT_TRUE(BluetoothPeer(kAddress) == BluetoothPeer(kAddress, L"", 0, false));
    HandClock clock;
    const BluetoothPeer peer(kAddress, L"phone", 0x200, true, clock);
    clock.advance(1min);
    EXPECT_TRUE(peer == BluetoothPeer(kAddress, L"phone", 0x200, true, clock));
    EXPECT_TRUE(peer != BluetoothPeer(CMacAddress(), L"phone", 0x200, true));
    EXPECT_TRUE(peer != BluetoothPeer(kAddress, L"Phone", 0x200, true));
    EXPECT_TRUE(peer != BluetoothPeer(kAddress, L"phone", 0x204, true));
    EXPECT_TRUE(peer != BluetoothPeer(kAddress, L"phone", 0x200, false));
    // An address of zeros is not the lack of one.
    EXPECT_TRUE(BluetoothPeer(CMacAddress()) != BluetoothPeer(CMacAddress(std::uint64_t{0})));
}

class Service final : public IBluetoothService {
  public:
    void connect(const BluetoothPeer&, Completion) override {}

    void disconnect(Completion) override {}
};

TEST(BluetoothService, ForcedDisconnectSucceedsAtOnceAndDispatchRaises) {
    Service service;
    std::vector<error_code> codes;
    const error_code failure(5, boost::system::generic_category());
    service.onDisconnected.connect([&](error_code ec) { codes.push_back(ec); });
    service.forceDisconnect([&](error_code ec) { codes.push_back(ec); });
    service.forceDisconnect({});
    service.dispatchOnDisconnected(failure);
    EXPECT_EQ(codes, (std::vector{error_code(), failure}));
}

} // namespace
} // namespace orbelantine::test
