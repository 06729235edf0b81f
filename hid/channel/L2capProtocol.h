#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace orbelantine::l2cap {

template <class Protocol>
class basic_l2cap_socket;

/// L2CAP channels of a HID device, as a protocol in the sense of Boost.Asio.
class l2cap_protocol {
  public:
    class endpoint {
      public:
        /// `address` as in "00:11:22:33:44:55".
        endpoint(std::string address, std::uint16_t psm)
            : mAddress(std::move(address))
            , mPsm(psm) {}

        [[nodiscard]] const std::string& address() const { return mAddress; }

        [[nodiscard]] std::uint16_t psm() const { return mPsm; }

      private:
        std::string mAddress;
        std::uint16_t mPsm = 0;
    };

    using socket = basic_l2cap_socket<l2cap_protocol>;
};

} // namespace orbelantine::l2cap
