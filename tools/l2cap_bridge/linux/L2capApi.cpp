#include "tools/l2cap_bridge/linux/L2capApi.h"

// The others build on this one.
#include <bluetooth/bluetooth.h>
#include <bluetooth/hci.h>
#include <bluetooth/l2cap.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <utility>

namespace orbelantine::bridge {

namespace {

/// hci_dev_list_req with its places.
struct DeviceList {
    static constexpr std::uint16_t kPlaces = HCI_MAX_DEV;
    std::uint16_t count = kPlaces;
    hci_dev_req devices[kPlaces]{};
};

static_assert(offsetof(DeviceList, devices) == sizeof(hci_dev_list_req));

bool isUp(const hci_dev_req& device) {
    return (device.dev_opt & (1U << HCI_UP)) != 0;
}

L2capApi::Error resultOf(ssize_t result) {
    return result < 0 ? errno : 0;
}

class SystemL2capApi final : public L2capApi {
  public:
    Error radio() override {
        const FileDescriptor hci(::socket(AF_BLUETOOTH, SOCK_RAW | SOCK_CLOEXEC, BTPROTO_HCI));
        DeviceList list;
        if (!hci || ::ioctl(hci.get(), HCIGETDEVLIST, &list) != 0)
            return errno;
        return std::any_of(list.devices, list.devices + list.count, isUp) ? 0 : ENODEV;
    }

    Error socket(FileDescriptor& socket) override {
        FileDescriptor made(
            ::socket(AF_BLUETOOTH, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, BTPROTO_L2CAP));
        // Phones take input from encrypted channels alone.
        const bt_security security{BT_SECURITY_MEDIUM, 0};
        if (!made ||
            ::setsockopt(made.get(), SOL_BLUETOOTH, BT_SECURITY, &security, sizeof(security)) != 0)
            return errno;
        socket = std::move(made);
        return 0;
    }

    Error connect(int socket, const phone::Address& peer, std::uint16_t psm) override {
        sockaddr_l2 address{};
        address.l2_family = AF_BLUETOOTH;
        address.l2_psm = htobs(psm);
        std::ranges::reverse_copy(peer.bytes, address.l2_bdaddr.b);
        return resultOf(
            ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)));
    }

    Error error(int socket) override {
        int error = 0;
        socklen_t size = sizeof(error);
        if (::getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) != 0)
            return errno;
        return error;
    }

    Error send(int socket, std::span<const std::uint8_t> packet) override {
        return resultOf(::send(socket, packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL));
    }

    Error receive(int socket, std::span<std::uint8_t> buffer, std::size_t& size) override {
        const ssize_t received = ::recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
        size = received < 0 ? 0 : static_cast<std::size_t>(received);
        return resultOf(received);
    }
};

} // namespace

L2capApi& L2capApi::system() {
    static SystemL2capApi api;
    return api;
}

} // namespace orbelantine::bridge
