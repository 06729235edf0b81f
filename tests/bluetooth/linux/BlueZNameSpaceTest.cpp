#include "bluetooth/radio/linux/BlueZNameSpace.h"

#include "bluetooth/radio/ServiceLookup.h"
#include "core/common/errors/ApiCategory.h"
#include "tests/support/CapturedLog.h"
#include "tools/virtual_stack/linux/FakeBlueZ.h"
#include "tools/virtual_stack/linux/PrivateBus.h"

#include <gtest/gtest.h>

#include <future>
#include <optional>
#include <string>

namespace orbelantine::test {
namespace {

using Record = ServiceLookup::Record;

/// The class of serial ports, and a name.
const Record kSerialPort = {0x35, 0x0F, 0x09, 0, 1,    0x35, 3,   0x19, 0x11,
                            0x01, 0x09, 1,    0, 0x25, 2,    'C', 'P'};
constexpr const char* kSerialPortXml = R"(<?xml version="1.0" encoding="UTF-8"?>
<record>
  <attribute id="0x0001"><sequence><uuid value="0x1101"/></sequence></attribute>
  <attribute id="0x0100"><text value="CP"/></attribute>
</record>
)";

class BlueZNameSpaceTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!mBus.runs())
            GTEST_SKIP() << "dbus-daemon is not installed";
        mStack.emplace(stack::FakeBlueZ::Options{mBus.address()});
    }

    /// What a publication that fails leaves as its error.
    NameSpaceApi::Error refusal(const Record& record) {
        EXPECT_EQ(publishBluetoothService(record, mApi), 0);
        return mApi.wsaGetLastError();
    }

    [[nodiscard]] std::string lastWithdrawer() const {
        return mStack->seen().last("UnregisterProfile").value_or(stack::Event{}).client;
    }

    stack::PrivateBus mBus;
    std::optional<stack::FakeBlueZ> mStack;
    BlueZNameSpace mApi{mBus.address()};
};

TEST_F(BlueZNameSpaceTest, RecordIsInBlueZUntilItsHandleIsWithdrawn) {
    const NameSpaceApi::Handle handle = publishBluetoothService(kSerialPort, mApi);
    const NameSpaceApi::Handle other = publishBluetoothService(kSerialPort, mApi);
    EXPECT_NE(handle, 0);
    EXPECT_NE(other, 0);
    EXPECT_NE(handle, other);
    const stack::Profile profile = mStack->seen().profile;
    EXPECT_EQ(profile.uuid, "00001101-0000-1000-8000-00805f9b34fb");
    EXPECT_EQ(profile.option<std::string>("ServiceRecord"), kSerialPortXml);

    EXPECT_EQ(withdrawBluetoothService(handle, mApi), 0);
    EXPECT_NE(lastWithdrawer(), profile.sender) << "the other one has gone";
    EXPECT_EQ(withdrawBluetoothService(handle, mApi), -1);
    EXPECT_EQ(mApi.wsaGetLastError(), 87);
    EXPECT_EQ(withdrawBluetoothService(other, mApi), 0);
    EXPECT_EQ(lastWithdrawer(), profile.sender);
}

TEST_F(BlueZNameSpaceTest, RecordIsPublishedAgainOnceBlueZIsBackAndGoesWithTheBus) {
    const NameSpaceApi::Handle handle = publishBluetoothService(kSerialPort, mApi);
    CapturedLog log(kLogDebug);
    mStack->restart();
    EXPECT_TRUE(mStack->waitUntil(
        [](const stack::Seen& seen) { return seen.count("RegisterProfile") == 2; }));
    EXPECT_EQ(log.missing({"BlueZ has gone: a service record is withdrawn until it is back"}),
              Texts());
    {
        BlueZNameSpace ending(mBus.address());
        EXPECT_NE(publishBluetoothService(kSerialPort, ending), 0);
    }
    EXPECT_EQ(mStack->seen().count("UnregisterProfile"), 1) << "an end withdraws";
    EXPECT_EQ(withdrawBluetoothService(handle, mApi), 0);
    EXPECT_EQ(mStack->seen().count("UnregisterProfile"), 2);
    const NameSpaceApi::Handle left = publishBluetoothService(kSerialPort, mApi);
    mBus.stop();
    EXPECT_EQ(withdrawBluetoothService(left, mApi), 0);
}

TEST_F(BlueZNameSpaceTest, FailureHasItsNumberAndLeavesNothingPublished) {
    Record behindTheEnd = kSerialPort;
    behindTheEnd.push_back(0);
    EXPECT_EQ(refusal(behindTheEnd), 13);
    EXPECT_EQ(refusal({}), 13);
    EXPECT_EQ(mStack->seen().count("RegisterProfile"), 0);
    mStack.reset();
    EXPECT_EQ(refusal(kSerialPort), 10050) << "without BlueZ";
    mStack.emplace(stack::FakeBlueZ::Options{mBus.address(), "org.bluez.Error.NotPermitted"});
    EXPECT_EQ(refusal(kSerialPort), 5);
    mStack.reset();
    mBus.stop();
    EXPECT_EQ(refusal(kSerialPort), 10050) << "without D-Bus";
}

TEST(BlueZNameSpace, LookupSaysThatTheSystemLacksIt) {
    std::promise<error_code> result;
    ServiceLookup lookup;
    lookup.start(CMacAddress(L"00:1A:7D:DA:71:13"), {},
                 [&](error_code ec, const auto&...) { result.set_value(ec); });
    EXPECT_EQ(result.get_future().get(),
              error_code(10045, apiCategory("BluetoothServiceLookup:WSALookupServiceBegin")));
}

} // namespace
} // namespace orbelantine::test
