#pragma once

#include "core/common/types/linux/FileDescriptor.h"

#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>

namespace sdbus {
class IConnection;
} // namespace sdbus

namespace orbelantine::stack {

/// A thread that serves a connection, and runs what others give it to do there.
class BusThread {
  public:
    using Task = std::function<void()>;

    /// `lost` runs there when the connection that is served breaks; it is no longer served then.
    /// Throws std::system_error.
    explicit BusThread(Task lost);
    BusThread(const BusThread&) = delete;
    BusThread& operator=(const BusThread&) = delete;
    /// What has been posted still runs.
    ~BusThread();

    void post(Task task);

    /// Runs the job there and gives what it gives, or throws what it throws.
    template <class Job>
    std::invoke_result_t<Job> run(Job job) {
        if (std::this_thread::get_id() == mThread.get_id())
            return job();
        using Result = std::invoke_result_t<Job>;
        const auto task = std::make_shared<std::packaged_task<Result()>>(std::move(job));
        post([task] { (*task)(); });
        return task->get_future().get();
    }

    /// Null for none. Called there.
    void serve(sdbus::IConnection* connection) { mConnection = connection; }

  private:
    void loop();
    /// False where it breaks.
    [[nodiscard]] bool process();
    void wait() const;
    [[nodiscard]] bool runTasks();

    const Task mLost;
    FileDescriptor mWake;
    sdbus::IConnection* mConnection = nullptr;
    std::mutex mMutex;
    /// Under the mutex, these two.
    std::deque<Task> mTasks;
    bool mEnds = false;
    std::thread mThread;
};

} // namespace orbelantine::stack
