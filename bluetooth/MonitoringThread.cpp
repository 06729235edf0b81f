#include "bluetooth/MonitoringThread.h"

#include "core/common/ThreadName.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_service.hpp>
#include <boost/asio/post.hpp>

#include <thread>
#include <utility>

namespace orbelantine {

class MonitoringThread::Worker {
  public:
    explicit Worker(const char* name)
        : mWork(mIoService.get_executor())
        , mThread([this, name] {
            setThreadName(name);
            mIoService.run();
        }) {}

    ~Worker() {
        mIoService.stop();
        mThread.join();
    }

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    boost::asio::io_service mIoService;

  private:
    boost::asio::executor_work_guard<boost::asio::io_service::executor_type> mWork;
    std::thread mThread;
};

MonitoringThread::MonitoringThread(const char* name)
    : mWorker(std::make_unique<Worker>(name)) {}

MonitoringThread::~MonitoringThread() = default;

void MonitoringThread::post(std::function<void()> task) {
    boost::asio::post(mWorker->mIoService, std::move(task));
}

} // namespace orbelantine
