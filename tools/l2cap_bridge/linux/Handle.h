#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "tools/device_socket/Protocol.h"
#include "tools/l2cap_bridge/linux/Channel.h"
#include "tools/virtual_phone/log/EventLog.h"

#include <poll.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

namespace orbelantine::bridge {

/// What every handle works with; all of it outlives them.
struct Parts {
    L2capApi& l2cap;
    phone::EventLog& log;
    phone::Now now;
};

/// One open device handle: answers the library's requests and carries its writes to the channel.
class Handle {
  public:
    using Milliseconds = std::chrono::milliseconds;
    /// The library's socket, then the channel's.
    using Polled = std::array<pollfd, 2>;

    Handle(const Parts& parts, const phone::Address& peer, FileDescriptor socket, unsigned id);

    /// What to wait for; while a connect goes on, or the radio is busy, the library waits.
    [[nodiscard]] Polled polled() const;
    /// When serve() has something to do without an event.
    [[nodiscard]] std::optional<Milliseconds> due() const;
    void serve(const Polled& events);
    void close();

    /// The library has closed the handle, or is to find it closed.
    [[nodiscard]] bool gone() const { return mGone; }

    /// True once after each channel that failed or got lost: the radio may be gone.
    [[nodiscard]] bool takeFailure() { return std::exchange(mFailed, false); }

  private:
    struct Answer {
        std::uint32_t error = 0;
        device::Reply output;
    };

    struct Request;
    static const Request kRequests[];

    void serveChannel(short events);
    [[nodiscard]] bool channelStands();
    void readChannel(bool hungUp);
    void readPackets(bool hungUp);
    [[nodiscard]] bool readsPackets() const;
    void take(device::Bytes packet);
    void write(device::Bytes payload);
    [[nodiscard]] std::optional<Answer> answer(std::uint32_t code, device::Bytes input);
    [[nodiscard]] std::optional<Answer> connect(device::Bytes input);
    [[nodiscard]] Answer connectAnswer(Channel::Error error);
    void reply(const Answer& answer);
    void loseChannel(Channel::Error error);
    void logError(std::string_view what, device::Bytes bytes);
    [[nodiscard]] phone::JsonObject event(std::string_view name) const;

    Parts mParts;
    phone::Address mPeer;
    FileDescriptor mSocket;
    unsigned mId;
    Channel mChannel;
    bool mGone = false;
    bool mFailed = false;
};

} // namespace orbelantine::bridge
