#include "ipc/pipe/PipeDuplexHandler.h"

#include "core/common/log/Log.h"
#include "core/common/run/WorkerThread.h"

#include <array>
#include <stdexcept>
#include <utility>

namespace orbelantine {

namespace {

enum TransferSignal : std::uint32_t { kReadSignal, kWriteSignal, kTeardownSignal };

int transferFailed(TransferApi::Error error, error_code& ec) {
    ec.assign(static_cast<int>(error), boost::system::system_category());
    return 0;
}

int transferred(std::uint32_t count, error_code& ec) {
    ec.assign(0, boost::system::system_category());
    return static_cast<int>(count);
}

} // namespace

bool PipeDuplexHandler::Event::create() {
    handle = api.createEvent();
    return handle != 0;
}

void PipeDuplexHandler::Event::close() {
    if (handle != 0)
        api.closeHandle(std::exchange(handle, 0));
}

PipeDuplexHandler::PipeDuplexHandler(std::string name, const Pipe* pipe,
                                     std::unique_ptr<TransferApi> api)
    : mName(std::move(name))
    , mPipe(pipe)
    , mApi(std::move(api))
    , mInPlace(mApi->completesInPlace())
    , mRead(*mApi)
    , mWrite(*mApi)
    , mTeardownEvent(*mApi) {
    if (mInPlace)
        return;
    if (!mRead.event.create()) {
        ORB_LOG(kLogDebug, "%s() failed creating read event.");
        throw std::runtime_error("failed creating event.");
    }
    // That it is missing goes unnoticed here, and shows when the worker's wait fails.
    mWrite.event.create();
    if (!mTeardownEvent.create()) {
        ORB_LOG(kLogDebug, "%s() failed creating teardown event.");
        throw std::runtime_error("failed creating event.");
    }
    mRead.overlapped.event = mRead.event.handle;
    mWrite.overlapped.event = mWrite.event.handle;
    mWorker = startWorkerThread([this] { run(); });
}

PipeDuplexHandler::~PipeDuplexHandler() {
    teardown();
}

void PipeDuplexHandler::run() {
    const std::array events{mRead.event.handle, mWrite.event.handle, mTeardownEvent.handle};
    while (!mTornDown) {
        const std::uint32_t signal = mApi->waitForMultipleObjects(events);
        if (mTornDown) {
            ORB_LOG(kLogDebug, "%s() tore down.");
            return;
        }
        if (signal == kTeardownSignal) {
            ORB_LOG(kLogDebug, "%s() teardown event triggered.");
            return;
        }
        if (signal != kReadSignal && signal != kWriteSignal) {
            ORB_LOG(kLogError, "%s() unknown error. GetLastError:%d.", mApi->lastError());
            continue;
        }
        Way& way = signal == kReadSignal ? mRead : mWrite;
        const std::lock_guard lock(way.mutex);
        ORB_LOG(kLogDebug, "%s() %s event signaled.", signal == kReadSignal ? "read" : "write");
        mApi->resetEvent(way.event.handle);
        way.done.notify_all();
    }
}

int PipeDuplexHandler::readSome(void* buffer, int size, error_code& ec) {
    ORB_TRACED();
    std::unique_lock lock(mRead.mutex);
    const PipeHandle pipe = *mPipe;
    if (!isLive(pipe))
        return transferFailed(win32::kErrorOperationAborted, ec);
    const TransferApi::Error begun =
        mApi->readFile(pipe, buffer, static_cast<std::uint32_t>(size), mRead.overlapped);
    if (begun != 0 && begun != win32::kErrorIoPending && begun != win32::kErrorMoreData)
        return transferFailed(mTornDown ? win32::kErrorOperationAborted : begun, ec);
    ORB_LOG(kLogDebug, "%s() waiting for read to finish.");
    waitUntilDone(mRead, pipe, lock);
    if (mTornDown) {
        settle(mRead);
        ORB_LOG(kLogWarning, "%s() tore down.");
        return transferFailed(win32::kErrorOperationAborted, ec);
    }
    std::uint32_t count = 0;
    const TransferApi::Error ended = takeResult(mRead, pipe, count);
    if (ended != 0 && ended != win32::kErrorMoreData) {
        ORB_LOG(kLogWarning,
                "%s() overlapped result failure, getLastError:%d, ret:%d, buffersize:%d.", ended,
                false, size);
        return transferFailed(win32::kErrorFileNotFound, ec);
    }
    ORB_LOG(kLogWarning, "%s() read successfully amount:%d, read buffer:%d.", count, size);
    return transferred(count, ec);
}

void PipeDuplexHandler::write(const void* data, int size, error_code& ec) {
    ORB_TRACED();
    if (!isLive(*mPipe)) {
        transferFailed(win32::kErrorOperationAborted, ec);
        return;
    }
    if (size < 1)
        return;
    const char* const bytes = static_cast<const char*>(data);
    int written = 0;
    do
        written += writeSome(bytes + written, size - written, ec);
    while (!ec && written < size);
}

int PipeDuplexHandler::writeSome(const void* data, int size, error_code& ec) {
    ORB_TRACED();
    std::unique_lock lock(mWrite.mutex);
    const PipeHandle pipe = *mPipe;
    if (!isLive(pipe))
        return transferFailed(win32::kErrorOperationAborted, ec);
    const TransferApi::Error begun =
        mApi->writeFile(pipe, data, static_cast<std::uint32_t>(size), mWrite.overlapped);
    if (begun != 0 && begun != win32::kErrorIoPending) {
        ORB_LOG(kLogWarning, "%s() write file error.");
        return transferFailed(mTornDown ? win32::kErrorOperationAborted : begun, ec);
    }
    ORB_LOG(kLogDebug, "%s() waiting for write to finish.");
    waitUntilDone(mWrite, pipe, lock);
    if (mTornDown) {
        settle(mWrite);
        ORB_LOG(kLogWarning, "%s() tore down.");
        return transferFailed(win32::kErrorOperationAborted, ec);
    }
    std::uint32_t count = 0;
    const TransferApi::Error ended = takeResult(mWrite, pipe, count);
    if (ended != 0) {
        ORB_LOG(kLogWarning, "%s() overlapped result failure, getLastError:%d, ret:%d.", ended,
                false);
        return transferFailed(win32::kErrorFileNotFound, ec);
    }
    ORB_LOG(kLogWarning, "%s() written successfully, amount:%d, wanted:%d.", count, size);
    return transferred(count, ec);
}

// The order counts: the worker is gone before the waiters are woken, and the waiters before the
// events.
void PipeDuplexHandler::teardown() {
    ORB_TRACED();
    const std::lock_guard lock(mTeardownMutex);
    if (mTornDown)
        return;
    mTornDown = true;
    if (mTeardownEvent.handle != 0)
        mApi->setEvent(mTeardownEvent.handle);
    if (mWorker.joinable())
        mWorker.join();
    mApi->cancelIo(*mPipe);
    release(mWrite);
    release(mRead);
    mRead.event.close();
    mWrite.event.close();
    mTeardownEvent.close();
}

bool PipeDuplexHandler::isLive(PipeHandle pipe) const {
    return pipe != kInvalidPipeHandle && !mTornDown;
}

void PipeDuplexHandler::waitUntilDone(Way& way, PipeHandle pipe,
                                      std::unique_lock<std::mutex>& lock) {
    if (mInPlace)
        return;
    way.pipe = pipe;
    ++way.waiting;
    // Without a condition to look at: a wake-up before the end is reported as a failure.
    way.done.wait(lock);
    --way.waiting;
    if (mTornDown)
        way.left.notify_all();
}

TransferApi::Error PipeDuplexHandler::takeResult(Way& way, PipeHandle pipe, std::uint32_t& count) {
    const TransferApi::Error error = mApi->getOverlappedResult(pipe, way.overlapped, count, false);
    if (error != 0 && error != win32::kErrorMoreData)
        settle(way);
    way.pipe = kInvalidPipeHandle;
    return error;
}

// CancelIo, in teardown, reaches the operations of its own thread alone.
void PipeDuplexHandler::settle(Way& way) {
    if (way.pipe == kInvalidPipeHandle)
        return;
    std::uint32_t ignored = 0;
    mApi->cancelIoEx(way.pipe, way.overlapped);
    static_cast<void>(mApi->getOverlappedResult(way.pipe, way.overlapped, ignored, true));
    way.pipe = kInvalidPipeHandle;
}

void PipeDuplexHandler::release(Way& way) {
    std::unique_lock lock(way.mutex);
    way.done.notify_all();
    way.left.wait(lock, [&way] { return way.waiting == 0; });
}

} // namespace orbelantine
