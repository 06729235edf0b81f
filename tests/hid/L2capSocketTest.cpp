#include "hid/L2capSocket.h"

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

constexpr const char* kAddress = "01:23:45:67:89:AB";

error_code asioCode(int value) {
    return {value, boost::asio::error::get_system_category()};
}

class L2capSocket : public testing::Test {
  protected:
    L2capSocket() {
        mApi.simulateHidDriver();
        boost::asio::make_service<Service>(mContext, mApi, mClock);
        mSocket = std::make_unique<l2cap_protocol::socket>(mContext);
    }

    error_code open() {
        error_code ec;
        mSocket->open({}, ec);
        return ec;
    }

    error_code connect(std::uint16_t psm = 19) {
        error_code ec;
        mSocket->connect({kAddress, psm}, ec);
        return ec;
    }

    template <class Buffers>
    error_code send(const Buffers& buffers, std::size_t& sent) {
        error_code ec = asioCode(99);
        sent = mSocket->send(buffers, 0, ec);
        return ec;
    }

    error_code probe() {
        error_code ec = asioCode(99);
        EXPECT_EQ(mSocket->receive(boost::asio::mutable_buffer(), 0, ec), 0u);
        return ec;
    }

    error_code close() {
        error_code ec = asioCode(99);
        mSocket->close(ec);
        return ec;
    }

    FakeDriverApi mApi;
    test::HandClock mClock;
    boost::asio::io_service mContext;
    std::unique_ptr<l2cap_protocol::socket> mSocket;
};

TEST_F(L2capSocket, IsOpenFromOpenToClose) {
    EXPECT_FALSE(mSocket->is_open());
    EXPECT_EQ(open(), error_code());
    EXPECT_TRUE(mSocket->is_open());
    EXPECT_EQ(connect(), error_code());
    EXPECT_EQ(close(), error_code());
    EXPECT_FALSE(mSocket->is_open());
    EXPECT_EQ(mApi.held(), 0u);
    EXPECT_EQ(close(), error_code());
}

TEST_F(L2capSocket, ConnectChecksTheVersionBeforeItOpensTheChannel) {
    ASSERT_FALSE(open());
    EXPECT_EQ(connect(17), error_code());
    const std::vector<FakeDriverApi::Request> expected = {
        {0x220008, {}},
        {0x220000, {0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, 17, 0, 1, 0}},
    };
    EXPECT_EQ(mApi.requests(), expected);
    EXPECT_EQ(mApi.openings().at(0).flags, 0xA0000000u);
}

TEST_F(L2capSocket, AnyOtherVersionRefusesTheConnection) {
    ASSERT_FALSE(open());
    for (const std::int16_t version : {3, 5}) {
        mApi.simulateVersion(version);
        EXPECT_EQ(connect(), asioCode(136)) << version;
        EXPECT_EQ(mApi.held(), 0u) << version;
    }
}

TEST_F(L2capSocket, EachCallThatFailsDuringConnectHasItsCodeAndLeavesNothingOpen) {
    ASSERT_FALSE(open());
    ASSERT_FALSE(connect());
    ASSERT_FALSE(close());
    const auto calls = mApi.calls();
    ASSERT_EQ(calls.size(), 9u);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        mApi.simulateFailure(mApi.calls().size() + i + 1, 1450);
        const bool asksVersion = i == 7;
        const bool watches = calls[i] == "CM_Register_Notification";
        const error_code expected = watches ? error_code() : asioCode(asksVersion ? 136 : -1);
        EXPECT_EQ(connect(), expected) << calls[i] << ' ' << i;
        (void)close();
        EXPECT_EQ(mApi.held(), 0u) << calls[i];
    }
}

TEST_F(L2capSocket, RefusedChannelLeavesNoDevice) {
    ASSERT_FALSE(open());
    mApi.simulateRefusedPsm(19);
    EXPECT_EQ(connect(19), asioCode(-1));
    EXPECT_EQ(mApi.held(), 0u);
    EXPECT_EQ(probe(), asioCode(-1));
}

TEST_F(L2capSocket, ConnectingAgainGivesUpTheFormerDevice) {
    ASSERT_FALSE(open());
    ASSERT_FALSE(connect(17));
    ASSERT_FALSE(connect(19));
    EXPECT_EQ(mApi.openFiles(), 1u);
}

TEST_F(L2capSocket, EachBufferGoesDownInAWriteOfItsOwn) {
    ASSERT_FALSE(open());
    ASSERT_FALSE(connect());
    const std::array<boost::asio::const_buffer, 2> buffers = {boost::asio::buffer("abc", 3),
                                                              boost::asio::buffer("de", 2)};
    std::size_t sent = 0;
    EXPECT_EQ(send(buffers, sent), error_code());
    EXPECT_EQ(sent, 5u);
    const std::vector<FakeDriverApi::Write> expected = {{19, {'a', 'b', 'c'}}, {19, {'d', 'e'}}};
    EXPECT_EQ(mApi.writes(), expected);
}

TEST_F(L2capSocket, SendFailsWithoutADeviceAndWithoutADriver) {
    ASSERT_FALSE(open());
    std::size_t sent = 9;
    EXPECT_EQ(send(boost::asio::buffer("x", 1), sent), asioCode(-1));
    EXPECT_EQ(sent, 0u);
    ASSERT_FALSE(connect());
    mApi.simulateFailureOf("WriteFile", 433);
    EXPECT_EQ(send(boost::asio::buffer("x", 1), sent), asioCode(-1));
    EXPECT_EQ(sent, 0u);
}

TEST_F(L2capSocket, ReceiveIsAProbeAndReceivesNothing) {
    ASSERT_FALSE(open());
    char byte = 0;
    error_code ec;
    EXPECT_EQ(mSocket->receive(boost::asio::buffer(&byte, 1), 0, ec), 0u);
    EXPECT_EQ(ec, asioCode(40));
    EXPECT_EQ(probe(), asioCode(-1));
    ASSERT_FALSE(connect());
    EXPECT_EQ(probe(), error_code());
    mApi.simulateChannelsGone();
    EXPECT_EQ(probe(), asioCode(-2));
    mApi.simulateFailureOf("DeviceIoControl", 31);
    EXPECT_EQ(probe(), asioCode(-3));
}

TEST_F(L2capSocket, RemovalClosesTheHandleAndLeavesTheSocketOpen) {
    ASSERT_FALSE(open());
    ASSERT_FALSE(connect());
    mApi.simulateRemoval();
    while (mApi.openFiles() > 0)
        std::this_thread::yield();
    std::size_t sent = 0;
    EXPECT_EQ(send(boost::asio::buffer("x", 1), sent), asioCode(-1));
    EXPECT_EQ(probe(), asioCode(-3));
    EXPECT_TRUE(mSocket->is_open());
}

TEST_F(L2capSocket, LogsItsOperations) {
    CapturedLog log(kLogDebug);
    ASSERT_FALSE(open());
    std::size_t sent = 0;
    (void)send(boost::asio::buffer("x", 1), sent);
    (void)close();
    std::vector<std::string> texts;
    for (const auto& line : log.take()) {
        EXPECT_EQ(line.level, static_cast<unsigned>(kLogDebug));
        texts.push_back(line.text.substr(line.text.find("()")).substr(0, 30));
    }
    const std::vector<std::string> expected = {
        "() Opening new socket, impl:", "() Sending data on socket", "() Unable to get HID device",
        "() Sending data on socket ret:", "() Closing socket, impl:"};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(texts.at(i).substr(0, expected[i].size()), expected[i]);
    EXPECT_EQ(texts.size(), expected.size());
}

} // namespace
} // namespace orbelantine::l2cap
