#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/linux/PipeFiles.h"

#include <cstdint>
#include <string>

/// The sockets of pipes, which lie in the folder that `folder` is the descriptor of.
namespace orbelantine::pipe_socket {

/// A non-blocking listener under the pipe's name, for this user alone, by whoever holds the name's
/// lock. What a dead server left there is removed; 231 where somebody listens, 5 where there is
/// anything but a socket.
[[nodiscard]] std::uint32_t listenAt(int folder, const PipeFiles& files, FileDescriptor& listener);
[[nodiscard]] bool isThere(int folder, const std::string& file);
/// A non-blocking socket to that file: 0, or an errno.
[[nodiscard]] int connectTo(int folder, const std::string& file, FileDescriptor& socket);

/// Whether the process at the other end was the effective user's when it made this connection.
[[nodiscard]] bool isPeerOurs(int socket);
/// Of the process that made this connection, or listened for it; 1168 where it has none.
[[nodiscard]] std::uint32_t peerProcessId(int socket, std::uint32_t& id);
[[nodiscard]] bool isPeerGone(int socket);

} // namespace orbelantine::pipe_socket
