#pragma once

#include "input/window/linux/XSurfaces.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace orbelantine {

/// The connection and the thread of all surfaces. The thread ends by itself after end(), or with
/// the server, when every window has been told of its destruction; nobody waits for it.
class XMessageThread : public std::enable_shared_from_this<XMessageThread> {
  public:
    [[nodiscard]] static XError start(WindowApi& api, std::shared_ptr<XMessageThread>& thread);
    ~XMessageThread();
    XMessageThread(const XMessageThread&) = delete;
    XMessageThread& operator=(const XMessageThread&) = delete;

    void end();

    [[nodiscard]] bool hasEnded() const { return mEnded || mConnection->isBroken(); }

    [[nodiscard]] const XConnection& connection() const { return *mConnection; }

    /// What `action` answers of the surfaces, under their lock.
    template <class Action>
    auto with(Action&& action) {
        const std::lock_guard lock(mMutex);
        const Waking waking{*this};
        return action(mSurfaces);
    }

    /// Lets the thread look for events that another's question may have read.
    void wake() const;

    void post(const WindowMessage& message);
    void send(const WindowMessage& message);
    /// Returns when the task has run on the thread, at the latest after `kLongestCall`.
    void call(const std::function<void()>& task);

    /// Of the message that the thread handles now, on the thread; else null.
    [[nodiscard]] WindowApi::Handle windowInHand() const;

    static constexpr std::chrono::seconds kLongestCall{5};

  private:
    struct Waking {
        const XMessageThread& thread;

        ~Waking() { thread.wake(); }
    };

    struct Posted {
        std::function<void()> task;
        std::uint64_t ticket;
    };

    XMessageThread(WindowApi& api, std::shared_ptr<XConnection> connection, int wakeup);

    void run();
    void wait() const;
    /// False if there was nothing to do.
    bool handlePosted();
    void handleEvents();
    [[nodiscard]] XOwned<xcb_generic_event_t> nextEvent() const;
    void handleAll(const XSurfaces::Messages& messages);
    void handle(const WindowMessage& message);
    std::uint64_t enqueue(std::function<void()> task);

    [[nodiscard]] bool isCurrent() const { return mId == std::this_thread::get_id(); }

    WindowApi& mApi;
    const std::shared_ptr<XConnection> mConnection;
    const int mWakeup;
    std::atomic<bool> mEnded = false;
    std::atomic<std::thread::id> mId;
    WindowApi::Handle mInHand = nullptr;

    // Of mSurfaces.
    std::mutex mMutex;
    XSurfaces mSurfaces;

    // Of what follows.
    std::mutex mPostedMutex;
    std::condition_variable mHandled;
    std::deque<Posted> mPosted;
    std::uint64_t mLastTicket = 0;
    std::uint64_t mHandledTicket = 0;
    bool mLeft = false;
};

} // namespace orbelantine
