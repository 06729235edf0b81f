#pragma once

#include "ipc/pipe/Overlapped.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace orbelantine {

/// The system's calls that move bytes through one connected end, one operation for each. An
/// operation returns the system's error number, 0 for success. One thread reads and one writes at a
/// time; the other operations are for any thread.
class TransferApi {
  public:
    using Error = std::uint32_t;
    using Handle = PipeHandle;

    virtual ~TransferApi() = default;

    /// True where readFile and writeFile return when they are through, and cancelIo, for now and
    /// ever, frees whoever is in one of them: there are no events. False where they return at once
    /// and the event of the Overlapped is signalled later.
    [[nodiscard]] virtual bool completesInPlace() const = 0;

    /// An event that is reset by hand and not signalled; 0 where there can be none.
    [[nodiscard]] virtual Handle createEvent() = 0;
    virtual void setEvent(Handle event) = 0;
    virtual void resetEvent(Handle event) = 0;
    /// Without a time-out: the index of the first that is signalled, or another value after a
    /// failure, whose number lastError has.
    [[nodiscard]] virtual std::uint32_t waitForMultipleObjects(std::span<const Handle> events) = 0;
    virtual void closeHandle(Handle event) = 0;
    [[nodiscard]] virtual Error lastError() = 0;

    [[nodiscard]] virtual Error readFile(Handle pipe, void* buffer, std::uint32_t size,
                                         Overlapped& overlapped) = 0;
    [[nodiscard]] virtual Error writeFile(Handle pipe, const void* data, std::uint32_t size,
                                          Overlapped& overlapped) = 0;
    /// `count` is set also where a message was longer than the buffer (234).
    [[nodiscard]] virtual Error getOverlappedResult(Handle pipe, Overlapped& overlapped,
                                                    std::uint32_t& count, bool wait) = 0;
    /// Of the calling thread's operations, but where they complete in place.
    virtual void cancelIo(Handle pipe) = 0;
    /// Of that one operation, whoever began it.
    virtual void cancelIoEx(Handle pipe, Overlapped& overlapped) = 0;

    /// The real system's, for one end.
    [[nodiscard]] static std::unique_ptr<TransferApi> system();
};

} // namespace orbelantine
