#include "hid/channel/HIDDeviceClient.h"

#include "bluetooth/DeviceBreaker.h"
#include "bluetooth/DriverProtocol.h"
#include "core/common/OSAL.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/log/Log.h"
#include "core/common/run/Clock.h"
#include "hid/channel/L2capSocket.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <mutex>

namespace orbelantine {

ORB_OSAL_REGISTER(IHIDDeviceClient, HIDDeviceClient, "HIDDeviceClient");

namespace {

using l2cap::l2cap_protocol;
using Socket = l2cap_protocol::socket;
using SocketPtr = boost::shared_ptr<Socket>;

alignas(driver::kBufferAlignment) constexpr std::uint8_t kGreeting[] = {0xA1, 0x13, 0x03};
// HID_CONTROL transaction, virtual cable unplug.
alignas(driver::kBufferAlignment) constexpr std::uint8_t kVirtualCableUnplug[] = {0x15};

constexpr int kUnplugRounds = 10;
constexpr std::chrono::milliseconds kUnplugRound(500);

error_code openChannel(boost::asio::io_service& ioService, SocketPtr& socket,
                       const std::string& address, std::uint16_t psm) {
    error_code ec;
    socket = boost::make_shared<Socket>(ioService);
    socket->open({}, ec);
    if (!ec)
        socket->connect({address, psm}, ec);
    return ec;
}

error_code send(Socket& socket, const void* data, std::size_t size) {
    error_code ec;
    socket.send(boost::asio::const_buffer(data, size), 0, ec);
    return ec;
}

// Fails once the channel is gone.
error_code probe(Socket& socket) {
    error_code ec;
    socket.receive(boost::asio::mutable_buffer(), 0, ec);
    return ec;
}

void closeChannel(const SocketPtr& socket) {
    error_code ignored;
    if (socket)
        socket->close(ignored);
}

} // namespace

struct HIDDeviceClient::Link {
    Link(DriverApi& api, IClock& unplugClock)
        : clock(unplugClock) {
        boost::asio::make_service<l2cap::l2cap_socket_service<l2cap_protocol>>(
            ioService, api, unplugClock, &breaker);
    }

    void drop() {
        interruptSocket.reset();
        controlSocket.reset();
    }

    IClock& clock;
    DeviceBreaker breaker;
    // Never run: it owns the socket service.
    boost::asio::io_service ioService;
    SocketPtr interruptSocket;
    SocketPtr controlSocket;
    // Guards the sockets, and mConnected against other writers.
    std::recursive_mutex mutex;
};

HIDDeviceClient::HIDDeviceClient()
    : HIDDeviceClient(DriverApi::system(), IClock::system()) {}

HIDDeviceClient::HIDDeviceClient(DriverApi& api, IClock& clock)
    : mLink(std::make_unique<Link>(api, clock)) {}

HIDDeviceClient::~HIDDeviceClient() {
    if (!mConnected)
        return;
    onDisconnected.disconnect_all_slots();
    HIDDeviceClient::disconnect();
}

error_code HIDDeviceClient::connect(const std::string& address) {
    const std::lock_guard lock(mLink->mutex);
    if (mConnected) {
        ORB_LOG(kLogDebug, "%s() can only connect while disconnected");
        return HidErrors::getErrorCode(HidErrors::InvalidState);
    }
    Link& link = *mLink;
    // The HID profile wants the control channel first.
    if (const error_code ec =
            openChannel(link.ioService, link.controlSocket, address, driver::kControlPsm)) {
        ORB_LOG(kLogError, "%s() failed connecting ctrl socket: %d", ec.value());
        link.drop();
        return ec;
    }
    ORB_LOG(kLogDebug, "%s() Connected ctrl socket");
    if (const error_code ec =
            openChannel(link.ioService, link.interruptSocket, address, driver::kInterruptPsm)) {
        ORB_LOG(kLogError, "%s() failed connecting interrupt socket: %d", ec.value());
        link.drop();
        return ec;
    }
    ORB_LOG(kLogDebug, "%s() Connected interrupt socket");
    // Sent twice without any wait; only the second counts.
    (void)send(*link.controlSocket, kGreeting, sizeof(kGreeting));
    if (const error_code ec = send(*link.controlSocket, kGreeting, sizeof(kGreeting))) {
        // Names the interrupt socket, though the control socket is used.
        ORB_LOG(kLogError, "%s() failed sending to interrupt socket: %d", ec.value());
        link.drop();
        return ec;
    }
    mConnected = true;
    return {};
}

void HIDDeviceClient::disconnect() {
    const std::lock_guard lock(mLink->mutex);
    if (!mConnected) {
        ORB_LOG(kLogDebug, "%s() can only disconnect while connected/connecting.");
        return;
    }
    closeChannel(mLink->interruptSocket);
    mLink->interruptSocket.reset();
    closeChannel(mLink->controlSocket);
    mLink->controlSocket.reset();
    mConnected = false;
}

// Whoever holds the lock may wait for the driver: that wait is broken first.
void HIDDeviceClient::forceDisconnect() {
    const DeviceBreaker::Breaking breaking(mLink->breaker);
    const std::lock_guard lock(mLink->mutex);
    closeChannel(mLink->interruptSocket);
    closeChannel(mLink->controlSocket);
}

bool HIDDeviceClient::isConnected() {
    return mConnected;
}

void HIDDeviceClient::sendReport(const std::uint8_t* data, std::size_t size) {
    const std::lock_guard lock(mLink->mutex);
    ORB_LOG(kLogTrace, "%s() Length = %zu", size);
    if (!mConnected) {
        ORB_LOG(kLogWarning, "%s() already disconnected");
        return;
    }
    if (const error_code ec = send(*mLink->interruptSocket, data, size)) {
        ORB_LOG(kLogError, "%s() Failed sending buffer - socket failure, err: %d", ec.value());
        // A success code, and the client stays connected: listeners rely on both.
        onDisconnected(error_code());
    }
}

error_code HIDDeviceClient::virtualCableUnplug() {
    // Held throughout, so that senders wait.
    const std::lock_guard lock(mLink->mutex);
    if (!mConnected)
        return HidErrors::getErrorCode(HidErrors::InvalidState);
    if (probe(*mLink->interruptSocket)) {
        ORB_LOG(kLogError, "%s() called virtual cable unplug while disconnected.");
        return HidErrors::getErrorCode(HidErrors::SocketIsDisconnected);
    }
    if (const error_code ec =
            send(*mLink->controlSocket, kVirtualCableUnplug, sizeof(kVirtualCableUnplug))) {
        ORB_LOG(kLogError, "%s() failed sending unplug request through interrupt channel.");
        return ec;
    }
    ORB_LOG(kLogDebug, "%s() virtual unplug request sent, waiting for socket disconnection...");
    for (int round = 0; round < kUnplugRounds; ++round) {
        mLink->clock.sleepFor(kUnplugRound);
        if (probe(*mLink->controlSocket)) {
            ORB_LOG(kLogDebug,
                    "%s() socket is disconnected, we must assume virtual cable unplug worked!!");
            disconnect();
            onDisconnected(error_code());
            return {};
        }
        ORB_LOG(kLogWarning, "%s() socket is still not disconnected... let's wait a bit more...");
    }
    return HidErrors::getErrorCode(HidErrors::TimeoutReached);
}

} // namespace orbelantine
