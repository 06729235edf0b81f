#pragma once

#include "bluetooth/WindowsBluetoothHIDDevice.h"
#include "core/common/log/Log.h"
#include "hid/channel/L2capProtocol.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/execution_context.hpp>
#include <boost/asio/socket_base.hpp>

#include <memory>

namespace orbelantine::l2cap {

/// Values in asio's system category; callers treat them as opaque.
inline constexpr int kSocketFailure = -1;
inline constexpr int kChannelGone = -2;
inline constexpr int kProbeFailure = -3;
inline constexpr int kNeverReceives = 40;
inline constexpr int kWrongDriverVersion = 136;

/// A code of that value in asio's system category.
[[nodiscard]] inline error_code socketError(int value) {
    return {value, boost::asio::error::get_system_category()};
}

/// The socket service that gives the private driver's handle the shape of a socket: one handle for
/// each channel. Without a lock: one thread at a time for each socket. No operation throws, all
/// block until the driver returns.
template <class Protocol>
class l2cap_socket_service : public boost::asio::execution_context::service {
  public:
    using protocol_type = Protocol;
    using endpoint_type = typename Protocol::endpoint;
    using message_flags = boost::asio::socket_base::message_flags;

    struct implementation_type {
        l2cap_socket_service* service = nullptr;
        std::unique_ptr<WindowsBluetoothHIDDevice> device;
        bool opened = false;
    };

    static boost::asio::execution_context::id id;

    /// `breaker`, if any, breaks what is under way on the sockets.
    explicit l2cap_socket_service(boost::asio::execution_context& context,
                                  DriverApi& api = DriverApi::system(),
                                  IClock& clock = IClock::system(),
                                  DeviceBreaker* breaker = nullptr)
        : service(context)
        , mApi(api)
        , mClock(clock)
        , mBreaker(breaker) {}

    void construct(implementation_type& impl) { impl = {}; }

    void destroy(implementation_type& impl) { impl = {}; }

    error_code open(implementation_type& impl, const protocol_type& protocol, error_code& ec);
    [[nodiscard]] bool is_open(const implementation_type& impl) const;
    error_code connect(implementation_type& impl, const endpoint_type& peer, error_code& ec);
    error_code close(implementation_type& impl, error_code& ec);

    /// One write for each buffer of the sequence; the sum of the lengths sent.
    template <class ConstBufferSequence>
    std::size_t send(implementation_type& impl, const ConstBufferSequence& buffers,
                     message_flags flags, error_code& ec);

    /// Nothing is ever received: an empty buffer asks whether the channel stands.
    template <class MutableBufferSequence>
    std::size_t receive(implementation_type& impl, const MutableBufferSequence& buffers,
                        message_flags flags, error_code& ec);

  private:
    void shutdown() override {}

    [[nodiscard]] std::unique_ptr<WindowsBluetoothHIDDevice> makeDevice(error_code& ec);
    [[nodiscard]] error_code probe(implementation_type& impl);

    DriverApi& mApi;
    IClock& mClock;
    DeviceBreaker* const mBreaker;
};

template <class Protocol>
template <class ConstBufferSequence>
std::size_t l2cap_socket_service<Protocol>::send(implementation_type& impl,
                                                 const ConstBufferSequence& buffers, message_flags,
                                                 error_code& ec) {
    ORB_LOG(kLogDebug, "%s() Sending data on socket");
    std::size_t sent = 0;
    ec = {};
    if (!impl.device) {
        ORB_LOG(kLogDebug, "%s() Unable to get HID device");
        ec = socketError(kSocketFailure);
    }
    const auto end = boost::asio::buffer_sequence_end(buffers);
    for (auto it = boost::asio::buffer_sequence_begin(buffers); !ec && it != end; ++it) {
        const boost::asio::const_buffer buffer(*it);
        if (impl.device->sendData(buffer.data(), buffer.size())) {
            sent += buffer.size();
        } else {
            ORB_LOG(kLogDebug, "%s() Unable to send data");
            ec = socketError(kSocketFailure);
        }
    }
    ORB_LOG(kLogDebug, "%s() Sending data on socket ret:%d, bytes written:%d, impl_socket:%d.",
            ec.value(), static_cast<int>(sent), impl.device ? impl.device->channel() : -1);
    return sent;
}

template <class Protocol>
template <class MutableBufferSequence>
std::size_t l2cap_socket_service<Protocol>::receive(implementation_type& impl,
                                                    const MutableBufferSequence& buffers,
                                                    message_flags, error_code& ec) {
    ec = boost::asio::buffer_size(buffers) > 0 ? socketError(kNeverReceives) : probe(impl);
    return 0;
}

extern template class l2cap_socket_service<l2cap_protocol>;

} // namespace orbelantine::l2cap
