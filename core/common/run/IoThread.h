#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_service.hpp>
#include <boost/asio/post.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>

#include <thread>
#include <utility>

namespace orbelantine {

/// A named worker that runs what is posted to it, in order. What hasn't begun when it is stopped is
/// dropped with the io_service. Any thread may post.
class IoThread {
  public:
    /// `name` outlives the thread.
    explicit IoThread(const char* name);
    ~IoThread();
    IoThread(const IoThread&) = delete;
    IoThread& operator=(const IoThread&) = delete;

    /// Stops and joins; not from the worker itself.
    void stop();

    [[nodiscard]] boost::asio::io_service& ioService() { return *mIoService; }

    template <class Task>
    void post(Task&& task) {
        boost::asio::post(*mIoService, std::forward<Task>(task));
    }

    /// Posts to a worker that may have gone: `task` is dropped then.
    template <class Task>
    static void post(const boost::weak_ptr<boost::asio::io_service>& worker, Task&& task) {
        if (const auto ioService = worker.lock())
            boost::asio::post(*ioService, std::forward<Task>(task));
    }

    /// For those who may post after the worker has gone.
    [[nodiscard]] boost::weak_ptr<boost::asio::io_service> weak() const { return mIoService; }

  private:
    boost::shared_ptr<boost::asio::io_service> mIoService;
    boost::asio::executor_work_guard<boost::asio::io_service::executor_type> mWork;
    std::thread mThread;
};

} // namespace orbelantine
