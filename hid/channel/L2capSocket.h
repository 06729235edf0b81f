#pragma once

#include "hid/channel/L2capSocketService.h"

#include <boost/asio/io_service.hpp>

namespace orbelantine::l2cap {

/// One L2CAP channel, in the manner of asio's own sockets. One thread at a time. Destruction closes
/// the channel.
template <class Protocol>
class basic_l2cap_socket {
  public:
    using protocol_type = Protocol;
    using endpoint_type = typename Protocol::endpoint;
    using service_type = l2cap_socket_service<Protocol>;
    using message_flags = typename service_type::message_flags;

    /// Closed; `context` outlives the socket.
    explicit basic_l2cap_socket(boost::asio::io_service& context)
        : mService(boost::asio::use_service<service_type>(context)) {
        mService.construct(mImpl);
    }

    ~basic_l2cap_socket() { mService.destroy(mImpl); }

    basic_l2cap_socket(const basic_l2cap_socket&) = delete;
    basic_l2cap_socket& operator=(const basic_l2cap_socket&) = delete;

    error_code open(const protocol_type& protocol, error_code& ec) {
        return mService.open(mImpl, protocol, ec);
    }

    [[nodiscard]] bool is_open() const { return mService.is_open(mImpl); }

    error_code connect(const endpoint_type& peer, error_code& ec) {
        return mService.connect(mImpl, peer, ec);
    }

    template <class ConstBufferSequence>
    std::size_t send(const ConstBufferSequence& buffers, message_flags flags, error_code& ec) {
        return mService.send(mImpl, buffers, flags, ec);
    }

    template <class MutableBufferSequence>
    std::size_t receive(const MutableBufferSequence& buffers, message_flags flags, error_code& ec) {
        return mService.receive(mImpl, buffers, flags, ec);
    }

    error_code close(error_code& ec) { return mService.close(mImpl, ec); }

  private:
    service_type& mService;
    typename service_type::implementation_type mImpl;
};

} // namespace orbelantine::l2cap
