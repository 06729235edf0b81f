#include "tools/virtual_stack/linux/BusThread.h"

#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace orbelantine::stack {

BusThread::BusThread(Task lost)
    : mLost(std::move(lost))
    , mWake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!mWake)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    mThread = std::thread([this] { loop(); });
}

BusThread::~BusThread() {
    post([this] {
        const std::lock_guard lock(mMutex);
        mEnds = true;
    });
    mThread.join();
}

void BusThread::post(Task task) {
    {
        const std::lock_guard lock(mMutex);
        mTasks.push_back(std::move(task));
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(mWake.get(), &one, sizeof(one));
}

void BusThread::loop() {
    do {
        if (mConnection != nullptr && !process()) {
            mConnection = nullptr;
            mLost();
        }
        wait();
    } while (runTasks());
}

bool BusThread::process() {
    try {
        while (mConnection->processPendingRequest()) {
        }
        return true;
    } catch (const sdbus::Error&) {
        return false;
    }
}

void BusThread::wait() const {
    pollfd places[] = {{mWake.get(), POLLIN, 0}, {-1, 0, 0}};
    int timeout = -1;
    if (mConnection != nullptr) {
        try {
            const auto data = mConnection->getEventLoopPollData();
            places[1] = {data.fd, data.events, 0};
            timeout = data.getPollTimeout();
        } catch (const sdbus::Error&) {
            // Processing it says that it is broken.
            timeout = 0;
        }
    }
    ::poll(places, std::size(places), timeout);
}

bool BusThread::runTasks() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto size = ::read(mWake.get(), &count, sizeof(count));
    std::unique_lock lock(mMutex);
    while (!mTasks.empty()) {
        const Task task = std::move(mTasks.front());
        mTasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
    return !mEnds;
}

} // namespace orbelantine::stack
