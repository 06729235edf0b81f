#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "tools/device_socket/Protocol.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace orbelantine::bridge {

class L2capApi;

/// One L2CAP channel to the phone, and what has become of it:
///
///     Closed --connect--> Connecting --settle--> Standing --the phone or the radio--> Lost
///                              `-----> Closed (refused, too late)
class Channel {
  public:
    using Milliseconds = std::chrono::milliseconds;
    /// An errno, 0 for success.
    using Error = int;

    enum class State { Closed, Connecting, Standing, Lost };

    /// How long the phone may take: paging it, and a question to its user.
    static constexpr Milliseconds kLongestConnect{20'000};

    /// `api` outlives the channel.
    explicit Channel(L2capApi& api)
        : mApi(api) {}

    /// From Closed or Lost. EINPROGRESS: Connecting; settle() tells the outcome.
    [[nodiscard]] Error connect(const phone::Address& peer, std::uint16_t psm, Milliseconds now);
    /// While Connecting: the outcome, or nothing yet. `events` are those of poll().
    [[nodiscard]] std::optional<Error> settle(short events, Milliseconds now);
    /// While Standing: sends a packet, or keeps it until the radio takes more; see full().
    [[nodiscard]] Error write(device::Bytes packet);
    /// While Standing: sends what is kept.
    [[nodiscard]] Error flush();
    /// While Standing: a packet from the phone, no bytes once there are none, or the reason of the
    /// loss. The bytes are good until the next call.
    [[nodiscard]] Error read(bool hungUp, std::optional<device::Bytes>& packet);
    /// Closes the socket.
    void lose();

    [[nodiscard]] State state() const { return mState; }

    /// No further write until what is kept has gone.
    [[nodiscard]] bool full() const { return mKept != 0; }

    /// For poll(): -1 without a socket.
    [[nodiscard]] int descriptor() const { return mSocket.get(); }

    [[nodiscard]] short events() const;

    /// When Connecting ends at the latest.
    [[nodiscard]] Milliseconds deadline() const { return mDeadline; }

    [[nodiscard]] std::uint16_t psm() const { return mPsm; }

  private:
    Error keepResult(Error error);

    L2capApi& mApi;
    State mState = State::Closed;
    FileDescriptor mSocket;
    std::uint16_t mPsm = 0;
    Milliseconds mDeadline{0};
    std::array<std::uint8_t, device::kMaxPacket> mBuffer{};
    std::array<std::uint8_t, device::kMaxPacket> mKeptPacket{};
    std::size_t mKept = 0;
};

} // namespace orbelantine::bridge
