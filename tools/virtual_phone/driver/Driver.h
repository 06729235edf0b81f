#pragma once

#include "tools/device_socket/Protocol.h"
#include "tools/virtual_phone/driver/Channel.h"
#include "tools/virtual_phone/log/EventLog.h"
#include "tools/virtual_phone/phone/Phone.h"
#include "tools/virtual_phone/program/Options.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>

namespace orbelantine::phone {

/// The driver before the phone: answers what arrives on each open device handle, and misbehaves as
/// told. A packet is a 4-byte little-endian code and its payload; code 0 is a write, any other a
/// request. A reply is a 4-byte little-endian error number, 0 for success, and the output.
class Driver {
  public:
    using HandleId = unsigned;
    using Bytes = device::Bytes;
    using Reply = device::Reply;

    static constexpr std::size_t kMaxPacket = device::kMaxPacket;

    /// `phone` and `log` outlive the driver.
    Driver(const Address& address, const Faults& faults, Phone& phone, EventLog& log);

    [[nodiscard]] HandleId open();
    void close(HandleId id);
    /// Takes one packet, whatever its bytes; a write and a packet without a code have no reply.
    [[nodiscard]] std::optional<Reply> packet(HandleId id, Bytes bytes);
    /// A packet whose bytes were not even read.
    void unreadable(std::string_view what);
    /// True once: the reports have come after which the device is to vanish.
    [[nodiscard]] bool takeVanish();

  private:
    struct Handle {
        /// Set while a channel stands on the handle.
        std::optional<Channel> channel;
    };

    struct Answer {
        std::uint32_t error = 0;
        Reply output;
    };

    struct Request;
    static const Request kRequests[];

    void write(const Handle& handle, Bytes payload);
    [[nodiscard]] Answer answer(HandleId id, std::uint32_t code, Bytes payload);
    [[nodiscard]] Answer connect(Handle& handle, Bytes payload);
    [[nodiscard]] std::uint32_t connectError(Channel channel, const Handle& handle) const;
    [[nodiscard]] bool stands(Channel channel) const;
    void drop(Handle& handle);
    [[nodiscard]] Reply encode(const Answer& answer);

    Address mAddress;
    Faults mFaults;
    Phone& mPhone;
    EventLog& mLog;
    std::map<HandleId, Handle> mHandles;
    HandleId mLastId = 0;
    unsigned mGarbageSent = 0;
};

} // namespace orbelantine::phone
