#pragma once

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/TransferApi.h"

#include <atomic>
#include <condition_variable>
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
    // to be shaped by its author
};

} // namespace orbelantine
