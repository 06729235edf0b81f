#pragma once

#include <boost/asio/dispatch.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_service.hpp>
#include <boost/asio/post.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>

#include <atomic>
#include <functional>
#include <future>
#include <thread>
#include <utility>

namespace orbelantine {

/// A named worker that runs what is posted to it, in order. Any thread may post. What throws ends
/// the worker: it is logged and told as safeIoServiceRunWithPtr does, and whatever was or will be
/// posted is dropped. So a task that someone waits for carries what tells him of its being dropped.
class IoThread {
  public:
    /// What the thread runs. Any thread may call, with a hold on it through the call.
    class Queue {
      public:
        template <class Task>
        void post(Task&& task) {
            enqueue(std::forward<Task>(task));
            dropIfEnded();
        }

        /// As post; on the worker itself it runs the task at once.
        template <class Task>
        void dispatch(Task&& task) {
            boost::asio::dispatch(ioService, unlessEnded(std::forward<Task>(task)));
            dropIfEnded();
        }

        /// Posts for a caller under a lock that a dropped task may want; without it, the caller
        /// goes on to dropIfEnded.
        template <class Task>
        void enqueue(Task&& task) {
            boost::asio::post(ioService, unlessEnded(std::forward<Task>(task)));
        }

        [[nodiscard]] bool hasEnded() const { return mEnded; }

        /// What is posted is dropped by whoever posts once the worker has ended.
        void dropIfEnded() {
            if (mEnded)
                ioService.poll();
        }

        boost::asio::io_service ioService;

      private:
        friend class IoThread;

        template <class Task>
        auto unlessEnded(Task&& task) {
            return [this, task = std::forward<Task>(task)]() mutable {
                if (!mEnded)
                    task();
            };
        }

        void run(const char* name);

        std::atomic<bool> mEnded = false;
        std::promise<void> mLeft;
    };

    /// `name` outlives the thread. Throws std::system_error if there can be no thread.
    explicit IoThread(const char* name);
    /// As stop; what hasn't begun is dropped.
    ~IoThread();
    IoThread(const IoThread&) = delete;
    IoThread& operator=(const IoThread&) = delete;

    /// Waits for the task in progress; no other begins. Where that takes longer, `interrupt` is
    /// called again and again: it breaks what the task waits for. On the worker itself there is no
    /// wait: the task in progress is its last one.
    void stop(const std::function<void()>& interrupt = {});

    [[nodiscard]] bool isCurrent() const { return mThread.get_id() == std::this_thread::get_id(); }

    [[nodiscard]] boost::asio::io_service& ioService() { return mQueue->ioService; }

    /// What is posted may end this object before the posting has come back.
    template <class Task>
    void post(Task&& task) {
        const auto held = mQueue;
        held->post(std::forward<Task>(task));
    }

    [[nodiscard]] const boost::shared_ptr<Queue>& queue() const { return mQueue; }

    /// For those who may post after the worker has gone.
    [[nodiscard]] boost::weak_ptr<Queue> weak() const { return mQueue; }

    /// Drops `task` if the worker has gone.
    template <class Task>
    static void post(const boost::weak_ptr<Queue>& worker, Task&& task) {
        if (const auto queue = worker.lock())
            queue->post(std::forward<Task>(task));
    }

  private:
    // Shared with the thread, which may have to leave by itself.
    boost::shared_ptr<Queue> mQueue;
    boost::asio::executor_work_guard<boost::asio::io_service::executor_type> mWork;
    std::thread mThread;
};

} // namespace orbelantine
