#include "core/common/run/IoThread.h"

#include "core/common/run/SafeIoService.h"
#include "core/common/run/ThreadName.h"

#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine {

IoThread::IoThread(const char* name)
    : mIoService(boost::make_shared<boost::asio::io_service>())
    , mWork(mIoService->get_executor())
    , mThread([name, ioService = mIoService.get()] {
        setThreadName(name);
        safeIoServiceRunWithPtr(ioService);
    }) {}

IoThread::~IoThread() {
    stop();
}

void IoThread::stop() {
    mIoService->stop();
    if (mThread.joinable())
        mThread.join();
}

} // namespace orbelantine
