#pragma once

#include <sys/socket.h>

#include <cerrno>
#include <cstddef>

namespace orbelantine::pipe_wire {

/// What goes between the two ends of a pipe, as packets of a SOCK_SEQPACKET socket. The server's
/// first packet is the greeting: this client is the one that was taken. Each further packet, either
/// way, is a piece of a message:
///
///     1 byte   kMoreFollows or kLast
///     rest     at most kLargestPiece bytes of the message; none only where the message has none

inline constexpr unsigned char kLast = 0;
inline constexpr unsigned char kMoreFollows = 1;
inline constexpr unsigned char kGreeting = 2;

inline constexpr std::size_t kLargestPiece = std::size_t{64} * 1024;

/// The result of a system call, made again as long as a signal breaks it off.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

} // namespace orbelantine::pipe_wire
