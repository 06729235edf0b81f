#pragma once

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/TransferApi.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace orbelantine {

/// Makes two blocking calls of one pipe's end, which can run at the same time on two threads, and
/// which one teardown, on any thread, releases for good. The end is the owner's, who may connect it
/// later and closes it after teardown only.
class PipeDuplexHandler {
  public:
    using Pipe = std::atomic<PipeHandle>;

    /// `name` is kept for whoever debugs; `pipe` outlives the handler. Throws std::runtime_error if
    /// there can be no event, std::system_error if there can be no thread.
    PipeDuplexHandler(std::string name, const Pipe* pipe,
                      std::unique_ptr<TransferApi> api = TransferApi::system());
    ~PipeDuplexHandler();
    PipeDuplexHandler(const PipeDuplexHandler&) = delete;
    PipeDuplexHandler& operator=(const PipeDuplexHandler&) = delete;

    /// Blocks until one read is through: the number of bytes, or 0 with `ec` set. What of a message
    /// is longer than the buffer comes with the next call.
    [[nodiscard]] int readSome(void* buffer, int size, error_code& ec);
    /// Blocks until all is written, or a write failed. With a size below 1 nothing happens.
    void write(const void* data, int size, error_code& ec);
    /// One write: the number of bytes.
    [[nodiscard]] int writeSome(const void* data, int size, error_code& ec);

    /// When it returns nobody is in a call any more, and nothing is written into their memory. Not
    /// on the handler's own thread: that throws std::system_error.
    void teardown();

  private:
    /// An event of the worker's; none where the handle is 0.
    struct Event {
        explicit Event(TransferApi& transfers)
            : api(transfers) {}

        ~Event() { close(); }

        Event(const Event&) = delete;
        Event& operator=(const Event&) = delete;

        /// False where there can be none.
        bool create();
        void close();

        TransferApi& api;
        PipeHandle handle = 0;
    };

    /// One way through the pipe. The mutex guards all of it, and whoever transfers holds it but
    /// for the wait. Every signal of `done` is given under the mutex, so that none comes between
    /// the start of an operation and the wait for its end.
    struct Way {
        explicit Way(TransferApi& api)
            : event(api) {}

        std::mutex mutex;
        std::condition_variable_any done;
        std::condition_variable_any left;
        Overlapped overlapped;
        Event event;
        // Where the operation goes on; kInvalidPipeHandle without one.
        PipeHandle pipe = kInvalidPipeHandle;
        int waiting = 0;
    };

    void run();
    [[nodiscard]] bool isLive(PipeHandle pipe) const;
    /// Waits once, for whatever wakes it, where operations are not over when they return.
    void waitUntilDone(Way& way, PipeHandle pipe, std::unique_lock<std::mutex>& lock);
    /// Leaves nothing pending behind a failure.
    [[nodiscard]] TransferApi::Error takeResult(Way& way, PipeHandle pipe, std::uint32_t& count);
    /// Breaks off what goes on. The system has let go of the caller's memory when it returns.
    void settle(Way& way);
    void release(Way& way);

    const std::string mName;
    const Pipe* const mPipe;
    const std::unique_ptr<TransferApi> mApi;
    const bool mInPlace;
    Way mRead;
    Way mWrite;
    Event mTeardownEvent;
    std::mutex mTeardownMutex;
    std::atomic<bool> mTornDown{false};
    std::thread mWorker;
};

} // namespace orbelantine
