#include "hid/channel/L2capSocket.h"

#include "tests/bluetooth/FakeDriverApi.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <array>

namespace orbelantine::l2cap {
namespace {

using test::CapturedLog;
using test::FakeDriverApi;
using Service = l2cap_socket_service<l2cap_protocol>;
using Sent = std::pair<error_code, std::size_t>;

error_code asioCode(int value) {
    return {value, boost::asio::error::get_system_category()};
}

/// An open socket.
class L2capSocket : public testing::Test {
  protected:
    L2capSocket() {
        mApi.simulateHidDriver();
        boost::asio::make_service<Service>(mContext, mApi, mClock);
        mSocket = std::make_unique<l2cap_protocol::socket>(mContext);
        EXPECT_FALSE(mSocket->is_open());
        EXPECT_EQ(result([&](error_code& ec) { mSocket->open({}, ec); }), error_code());
    }

    template <class Operation>
    static error_code result(Operation operation) {
        error_code ec = asioCode(99);
        operation(ec);
        return ec;
    }

    error_code connect(std::uint16_t psm = 19) {
        return result([&](error_code& ec) { mSocket->connect({"01:23:45:67:89:AB", psm}, ec); });
    }

    template <class Buffers>
    Sent send(const Buffers& buffers) {
        std::size_t sent = 99;
        const error_code code =
            result([&](error_code& ec) { sent = mSocket->send(buffers, 0, ec); });
        return {code, sent};
    }

    error_code receive(const boost::asio::mutable_buffer& buffer) {
        return result([&](error_code& ec) { EXPECT_EQ(mSocket->receive(buffer, 0, ec), 0u); });
    }

    error_code probe() { return receive({}); }

    error_code close() {
        return result([&](error_code& ec) { mSocket->close(ec); });
    }

    FakeDriverApi mApi;
    test::HandClock mClock;
    boost::asio::io_service mContext;
    std::unique_ptr<l2cap_protocol::socket> mSocket;
};

TEST_F(L2capSocket, ConnectsOneDeviceOfTheRightVersionAtATimeAndIsOpenUntilCloseAndLogsBoth) {
    EXPECT_TRUE(mSocket->is_open());
    EXPECT_EQ(connect(17), error_code());
    const std::vector<FakeDriverApi::Request> expected = {
        {0x220008, {}},
        {0x220000, {0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 17, 0, 1, 0}},
    };
    EXPECT_EQ(mApi.requests, expected);
    EXPECT_EQ(mApi.openings.at(0).flags, 0xA0000000u);
    EXPECT_EQ(connect(19), error_code());
    EXPECT_EQ(mApi.openFiles(), 1u) << "the former device is given up";
    mApi.refusedPsm = 19;
    EXPECT_EQ(connect(19), asioCode(-1));
    EXPECT_EQ(mApi.held(), 0u);
    EXPECT_EQ(probe(), asioCode(-1));
    for (const std::int16_t version : {3, 5}) {
        mApi.version = version;
        EXPECT_EQ(connect(17), asioCode(136)) << version;
        EXPECT_EQ(mApi.held(), 0u) << version;
    }
    CapturedLog log(kLogDebug);
    (void)result([&](error_code& ec) { mSocket->open({}, ec); });
    (void)send(boost::asio::buffer("x", 1));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(close(), error_code());
    EXPECT_FALSE(mSocket->is_open());
    EXPECT_EQ(log.missing({"() Opening new socket, impl:", "() Sending data on socket",
                           "() Unable to get HID device",
                           "() Sending data on socket ret:-1, bytes written:0, impl_socket:-1.",
                           "() Closing socket, impl:"}),
              test::Texts());
}

TEST_F(L2capSocket, EachBufferGoesDownInAWriteOfItsOwn) {
    EXPECT_EQ(send(boost::asio::buffer("x", 1)), Sent(asioCode(-1), 0)) << "not connected";
    ASSERT_FALSE(connect());
    const std::array<boost::asio::const_buffer, 2> buffers = {boost::asio::buffer("abc", 3),
                                                              boost::asio::buffer("de", 2)};
    EXPECT_EQ(send(buffers), Sent(error_code(), 5));
    const std::vector<FakeDriverApi::Write> expected = {{19, {'a', 'b', 'c'}}, {19, {'d', 'e'}}};
    EXPECT_EQ(mApi.writes, expected);
    mApi.failures["WriteFile"] = 433;
    EXPECT_EQ(send(buffers), Sent(asioCode(-1), 0));
}

TEST_F(L2capSocket, ReceiveIsAProbeThatTellsAClosedChannelFromARemovedDevice) {
    char byte = 0;
    EXPECT_EQ(receive(boost::asio::buffer(&byte, 1)), asioCode(40));
    EXPECT_EQ(probe(), asioCode(-1));
    ASSERT_FALSE(connect());
    EXPECT_EQ(probe(), error_code());
    mApi.simulateChannelsGone();
    EXPECT_EQ(probe(), asioCode(-2));
    mApi.failures["DeviceIoControl"] = 31;
    EXPECT_EQ(probe(), asioCode(-3));
    mApi.simulateRemoval();
    while (mApi.openFiles() > 0)
        std::this_thread::yield();
    EXPECT_EQ(probe(), asioCode(-3));
    EXPECT_EQ(send(boost::asio::buffer("x", 1)), Sent(asioCode(-1), 0));
    EXPECT_TRUE(mSocket->is_open());
}

} // namespace
} // namespace orbelantine::l2cap
