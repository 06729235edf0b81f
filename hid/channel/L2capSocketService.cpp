#include "hid/channel/L2capSocketService.h"

#include "core/common/errors/ErrorAreas.h"

#include <system_error>
#include <utility>

namespace orbelantine::l2cap {

template <class Protocol>
boost::asio::execution_context::id l2cap_socket_service<Protocol>::id;

template <class Protocol>
error_code l2cap_socket_service<Protocol>::open(implementation_type& impl, const protocol_type&,
                                                error_code& ec) {
    ORB_LOG(kLogDebug, "%s() Opening new socket, impl:%p", static_cast<const void*>(&impl));
    impl = {this, nullptr, true};
    return ec = {};
}

template <class Protocol>
bool l2cap_socket_service<Protocol>::is_open(const implementation_type& impl) const {
    ORB_LOG(kLogDebug, "%s() Checking if socket is open, impl:%p", static_cast<const void*>(&impl));
    return impl.opened;
}

template <class Protocol>
error_code l2cap_socket_service<Protocol>::connect(implementation_type& impl,
                                                   const endpoint_type& peer, error_code& ec) {
    ORB_LOG(kLogDebug, "%s() Connecting socket, impl:%p", static_cast<const void*>(&impl));
    impl.device.reset();
    auto device = makeDevice(ec);
    if (!device)
        return ec;
    const auto onRemoval = [raw = device.get()](error_code reason) {
        ORB_LOG(kLogWarning, "%s() System initiated device removal. Error: %s",
                reason.message().c_str());
        raw->close();
    };
    if (const error_code failure = device->open(onRemoval)) {
        ORB_LOG(kLogError, "%s() Failed opening the socket. Error: %d", failure.value());
        return ec = socketError(kSocketFailure);
    }
    const error_code version = device->checkVersion();
    if (version && version != DriverErrors::getErrorCode(DriverErrors::VersionOldButCompatible)) {
        ORB_LOG(kLogError, "%s() Invalid HID driver version");
        device->close();
        return ec = socketError(kWrongDriverVersion);
    }
    if (device->connect(peer.address(), peer.psm()) <= 0) {
        device->close();
        ORB_LOG(kLogError, "%s() Failed connecting to socket");
        return ec = socketError(kSocketFailure);
    }
    impl.device = std::move(device);
    return ec = {};
}

/// Null, with `ec`, if there can be no thread for it.
template <class Protocol>
std::unique_ptr<WindowsBluetoothHIDDevice>
l2cap_socket_service<Protocol>::makeDevice(error_code& ec) {
    try {
        return std::make_unique<WindowsBluetoothHIDDevice>(mApi, mClock, mBreaker);
    } catch (const std::system_error& e) {
        ORB_LOG(kLogError, "%s() no thread can be started: %s", e.what());
        ec = {e.code().value(), boost::system::generic_category()};
        return nullptr;
    }
}

template <class Protocol>
error_code l2cap_socket_service<Protocol>::close(implementation_type& impl, error_code& ec) {
    ORB_LOG(kLogDebug, "%s() Closing socket, impl:%p", static_cast<const void*>(&impl));
    if (impl.device)
        impl.device->close();
    impl.device.reset();
    impl.opened = false;
    return ec = {};
}

template <class Protocol>
error_code l2cap_socket_service<Protocol>::probe(implementation_type& impl) {
    if (!impl.device) {
        ORB_LOG(kLogDebug, "%s() Unable to get HID device");
        return socketError(kSocketFailure);
    }
    switch (impl.device->isConnected()) {
    case WindowsBluetoothHIDDevice::Channel::Stands:
        return {};
    case WindowsBluetoothHIDDevice::Channel::Gone:
        return socketError(kChannelGone);
    default:
        return socketError(kProbeFailure);
    }
}

template class l2cap_socket_service<l2cap_protocol>;

} // namespace orbelantine::l2cap
