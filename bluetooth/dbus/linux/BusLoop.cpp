#include "bluetooth/dbus/linux/BusLoop.h"

#include "bluetooth/dbus/linux/Bus.h"
#include "core/common/run/IDelayTimer.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/system/error_code.hpp>
#include <fcntl.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace orbelantine::dbus {

namespace {

/// Handled in one go, so that a flood leaves the thread to others too.
constexpr unsigned kBatch = 256;

int copyOf(int descriptor) {
    const int copy = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (copy < 0)
        throw std::system_error(errno, std::generic_category());
    return copy;
}

IClock::TimePoint momentOf(std::uint64_t microseconds) {
    return laterBy(IClock::TimePoint(), std::chrono::microseconds(microseconds));
}

} // namespace

BusLoop::BusLoop(Bus& bus, boost::asio::io_context& ioService, std::function<void()> onLost)
    : mBus(bus)
    , mIoService(ioService)
    , mOnLost(std::move(onLost))
    , mDescriptor(ioService, copyOf(bus.wanted().fd))
    , mDueAt(Bus::kNoTimeout) {}

void BusLoop::process() {
    const auto held = shared_from_this();
    switch (mBus.process(kBatch)) {
    case Bus::State::Idle:
        return waitForMore();
    case Bus::State::More:
        return processLater();
    case Bus::State::Lost:
        if (const auto onLost = std::exchange(mOnLost, nullptr))
            onLost();
    }
}

void BusLoop::waitForMore() {
    const short events = mBus.wanted().events;
    if ((events & POLLIN) != 0)
        waitFor(Descriptor::wait_read, mReading);
    if ((events & POLLOUT) != 0)
        waitFor(Descriptor::wait_write, mWriting);
    waitUntil(mBus.dueAt());
}

void BusLoop::waitFor(Descriptor::wait_type type, bool& waiting) {
    if (std::exchange(waiting, true))
        return;
    mDescriptor.async_wait(type, [weak = weak_from_this(), &waiting](auto ec) {
        const auto self = weak.lock();
        if (!self || ec)
            return;
        waiting = false;
        self->process();
    });
}

void BusLoop::waitUntil(std::uint64_t dueAt) {
    if (dueAt == std::exchange(mDueAt, dueAt))
        return;
    if (mTimer)
        mTimer->cancel();
    mTimer.reset();
    if (dueAt == Bus::kNoTimeout)
        return;
    // The bus has its times from the system, whatever clock its user goes by.
    mTimer = IClock::system().makeTimer(mIoService, momentOf(dueAt));
    mTimer->asyncWait([weak = weak_from_this()](const boost::system::error_code& ec) {
        const auto self = weak.lock();
        if (!self || ec)
            return;
        self->mDueAt = Bus::kNoTimeout;
        self->process();
    });
}

void BusLoop::processLater() {
    if (std::exchange(mQueued, true))
        return;
    boost::asio::post(mIoService, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self)
            return;
        self->mQueued = false;
        self->process();
    });
}

} // namespace orbelantine::dbus
