#pragma once

#include <functional>
#include <memory>

namespace orbelantine {

/// A named worker that runs what is posted to it, in order. Stopping drops what hasn't begun.
class MonitoringThread {
  public:
    /// `name` outlives the thread.
    explicit MonitoringThread(const char* name);
    /// Stops and joins; not from a task of this worker.
    ~MonitoringThread();
    MonitoringThread(const MonitoringThread&) = delete;
    MonitoringThread& operator=(const MonitoringThread&) = delete;

    /// Any thread may call; never waits.
    void post(std::function<void()> task);

  private:
    class Worker;

    std::unique_ptr<Worker> mWorker;
};

} // namespace orbelantine
