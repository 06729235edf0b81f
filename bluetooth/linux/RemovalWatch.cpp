#include "bluetooth/linux/RemovalWatch.h"

#include "core/common/run/ThreadName.h"
#include "core/common/run/WorkerThread.h"

#include <poll.h>
#include <sys/eventfd.h>

#include <cerrno>
#include <iterator>
#include <system_error>

namespace orbelantine {

namespace {

int makeEvent() {
    const int fd = eventfd(0, EFD_CLOEXEC);
    if (fd < 0)
        throw std::system_error(errno, std::generic_category());
    return fd;
}

} // namespace

RemovalWatch::RemovalWatch(int socket, std::function<void()> onRemoval)
    : mSocket(socket)
    , mOnRemoval(std::move(onRemoval))
    , mStop(makeEvent())
    , mThread(startWorkerThread([this] { run(); })) {}

RemovalWatch::~RemovalWatch() {
    eventfd_write(mStop.get(), 1);
    mThread.join();
}

void RemovalWatch::run() {
    setThreadName("DriverRemovalThread");
    // Replies are none of its business: only the hang-up is.
    pollfd watched[] = {{mSocket, POLLRDHUP, 0}, {mStop.get(), POLLIN, 0}};
    while (poll(watched, std::size(watched), -1) < 0 && errno == EINTR) {
    }
    const bool stopped = watched[1].revents != 0;
    if (!stopped && watched[0].revents != 0)
        mOnRemoval();
}

} // namespace orbelantine
