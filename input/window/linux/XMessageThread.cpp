#include "input/window/linux/XMessageThread.h"

#include "core/common/log/Log.h"
#include "core/common/run/ThreadName.h"
#include "core/common/run/WorkerThread.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <exception>
#include <system_error>
#include <utility>

namespace orbelantine {

XError XMessageThread::start(WindowApi& api, std::shared_ptr<XMessageThread>& thread) {
    std::shared_ptr<XConnection> connection;
    if (const XError error = XConnection::open(connection); error != XError::None)
        return error;
    if (connection->extension("XInputExtension") == 0 || connection->extension("XKEYBOARD") == 0)
        return XError::NoExtension;
    const int wakeup = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakeup < 0)
        return XError::NoThread;
    const std::shared_ptr<XMessageThread> made(
        new XMessageThread(api, std::move(connection), wakeup));
    try {
        startWorkerThread([made] { made->run(); }).detach();
    } catch (const std::system_error&) {
        return XError::NoThread;
    }
    thread = made;
    return XError::None;
}

XMessageThread::XMessageThread(WindowApi& api, std::shared_ptr<XConnection> connection, int wakeup)
    : mApi(api)
    , mConnection(std::move(connection))
    , mWakeup(wakeup)
    , mSurfaces(*mConnection) {}

XMessageThread::~XMessageThread() {
    ::close(mWakeup);
}

void XMessageThread::end() {
    mEnded = true;
    wake();
}

void XMessageThread::wake() const {
    if (!isCurrent())
        ::eventfd_write(mWakeup, 1);
}

void XMessageThread::run() {
    mId = std::this_thread::get_id();
    setThreadName("WindowMessageThread");
    while (!mEnded && !mConnection->isBroken()) {
        const bool busy = handlePosted();
        handleEvents();
        if (!busy && !mEnded && !mConnection->isBroken())
            wait();
    }
    if (!mEnded) {
        ORB_LOG(kLogError, "%s() The X server has ended the connection.");
        handleAll(with([](XSurfaces& surfaces) { return surfaces.destroyed(); }));
    }
    mEnded = true;
    std::deque<Posted> left;
    const std::lock_guard lock(mPostedMutex);
    mLeft = true;
    left.swap(mPosted);
    mHandled.notify_all();
}

void XMessageThread::wait() const {
    constexpr int kWithoutLimit = -1;
    pollfd sources[] = {
        {mConnection->library().xcb_get_file_descriptor(mConnection->get()), POLLIN, 0},
        {mWakeup, POLLIN, 0},
    };
    static_cast<void>(::poll(sources, std::size(sources), kWithoutLimit));
    eventfd_t count = 0;
    ::eventfd_read(mWakeup, &count);
}

XOwned<xcb_generic_event_t> XMessageThread::nextEvent() const {
    return XOwned<xcb_generic_event_t>(
        mConnection->library().xcb_poll_for_event(mConnection->get()));
}

void XMessageThread::handleEvents() {
    XSurfaces::Messages messages;
    while (!mEnded) {
        const auto event = nextEvent();
        messages.clear();
        const bool more = with([&](XSurfaces& surfaces) {
            if (event)
                surfaces.translate(*event, messages);
            else if (surfaces.isFocusOpen() && !mConnection->isBroken()) {
                static_cast<void>(mConnection->focus());
                const auto next = nextEvent();
                surfaces.settleFocus(next.get(), messages);
                if (next)
                    surfaces.translate(*next, messages);
                return true;
            }
            return event != nullptr;
        });
        handleAll(messages);
        if (!more)
            return;
    }
}

bool XMessageThread::handlePosted() {
    std::unique_lock lock(mPostedMutex);
    if (mPosted.empty())
        return false;
    Posted posted = std::move(mPosted.front());
    mPosted.pop_front();
    lock.unlock();
    posted.task();
    // What it holds may end with it.
    posted.task = nullptr;
    lock.lock();
    mHandledTicket = posted.ticket;
    mHandled.notify_all();
    return true;
}

void XMessageThread::handleAll(const XSurfaces::Messages& messages) {
    for (const WindowMessage& message : messages)
        if (with([&](XSurfaces& surfaces) { return surfaces.has(xWindowOf(message.window)); }))
            handle(message);
}

void XMessageThread::handle(const WindowMessage& message) {
    const auto outer = std::exchange(mInHand, message.window);
    try {
        handleWindowMessage(mApi, message);
    } catch (const std::exception& e) {
        ORB_LOG(kLogError, "%s() a slot has failed at message %u: %s", message.message, e.what());
    }
    mInHand = outer;
}

WindowApi::Handle XMessageThread::windowInHand() const {
    return isCurrent() ? mInHand : nullptr;
}

std::uint64_t XMessageThread::enqueue(std::function<void()> task) {
    mPosted.push_back({std::move(task), ++mLastTicket});
    wake();
    return mLastTicket;
}

void XMessageThread::post(const WindowMessage& message) {
    const std::lock_guard lock(mPostedMutex);
    if (!mLeft)
        enqueue([this, message] { handle(message); });
}

void XMessageThread::send(const WindowMessage& message) {
    call([this, message] { handle(message); });
}

void XMessageThread::call(const std::function<void()>& task) {
    std::unique_lock lock(mPostedMutex);
    if (mLeft || isCurrent()) {
        lock.unlock();
        task();
        return;
    }
    const std::uint64_t ticket = enqueue(task);
    if (!mHandled.wait_for(lock, kLongestCall, [&] { return mLeft || mHandledTicket >= ticket; }))
        ORB_LOG(kLogError, "%s() the window's thread is busy: what it is to do waits");
}

} // namespace orbelantine
