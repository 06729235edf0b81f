#include "tests/ipc/PipePair.h"

#include <sys/socket.h>
#include <unistd.h>

#include <system_error>

namespace orbelantine::test {

PipePair::PipePair() {
    std::array<int, 2> sockets{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets.data()) != 0)
        throw std::system_error(errno, std::generic_category());
    mEnds[kServer] = sockets[kServer];
    mEnds[kClient] = sockets[kClient];
}

void PipePair::close(Side side) {
    const PipeHandle end = this->end(side).exchange(kInvalidPipeHandle);
    if (end != kInvalidPipeHandle)
        ::close(static_cast<int>(end));
}

} // namespace orbelantine::test
