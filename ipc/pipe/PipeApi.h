#pragma once

#include "ipc/pipe/Overlapped.h"

#include <cstdint>
#include <string>

namespace orbelantine {

/// The system's calls that make, find and join named pipes and tell who is at the other end, one
/// operation for each, under the names and with the numbers of Windows. An operation returns the
/// system's error number, 0 for success; outputs are meaningful only then. Any thread may call.
class PipeApi {
  public:
    using Error = std::uint32_t;
    using Handle = PipeHandle;

    static constexpr std::uint32_t kWaitObject = 0;
    static constexpr std::uint32_t kWaitTimeout = 258;
    static constexpr std::uint32_t kWaitFailed = 0xFFFFFFFF;

    /// What CreateNamedPipe is called with.
    struct NamedPipe {
        std::uint32_t openMode;
        std::uint32_t pipeMode;
        std::uint32_t maxInstances;
        std::uint32_t outBufferSize;
        std::uint32_t inBufferSize;
        std::uint32_t defaultTimeout; // ms
    };

    virtual ~PipeApi() = default;

    /// What the calling thread's last failed call left.
    [[nodiscard]] virtual Error lastError() = 0;

    /// 0 when an instance waits for a client, 2 when there is no such pipe, 121 when all were taken
    /// for `timeout` milliseconds.
    [[nodiscard]] virtual Error waitNamedPipe(const std::string& name, std::uint32_t timeout) = 0;
    /// Joins an existing pipe, unshared.
    [[nodiscard]] virtual Error createFile(const std::string& name, std::uint32_t access,
                                           std::uint32_t flags, Handle& pipe) = 0;
    /// `descriptor` is one of convertStringSecurityDescriptor; the handle is not inherited.
    [[nodiscard]] virtual Error createNamedPipe(const std::string& name, const NamedPipe& params,
                                                void* descriptor, Handle& pipe) = 0;
    /// 997 when the event of `overlapped` tells of the client, 535 when there is one already.
    [[nodiscard]] virtual Error connectNamedPipe(Handle pipe, Overlapped& overlapped) = 0;
    virtual void disconnectNamedPipe(Handle pipe) = 0;
    /// Whether the operation is over and succeeded, without waiting.
    [[nodiscard]] virtual Error getOverlappedResult(Handle pipe, Overlapped& overlapped) = 0;
    virtual void cancelIo(Handle pipe) = 0;

    /// An event that the wait which it ends resets; 0 where there can be none.
    [[nodiscard]] virtual Handle createEvent() = 0;
    /// kWaitObject, kWaitTimeout, or another value after a failure.
    [[nodiscard]] virtual std::uint32_t waitForSingleObject(Handle event,
                                                            std::uint32_t timeout) = 0;
    virtual void closeHandle(Handle handle) = 0;

    [[nodiscard]] virtual Error getNamedPipeClientProcessId(Handle pipe, std::uint32_t& id) = 0;
    [[nodiscard]] virtual Error getNamedPipeServerProcessId(Handle pipe, std::uint32_t& id) = 0;
    /// The process `id` at the other end of `pipe`.
    [[nodiscard]] virtual Error openProcess(Handle pipe, std::uint32_t access, std::uint32_t id,
                                            Handle& process) = 0;
    /// A path by which the process's executable can be read as long as the pipe is open, at most
    /// 259 characters.
    [[nodiscard]] virtual Error getModuleFileName(Handle process, std::wstring& path) = 0;

    /// The process's real system; lives until the process ends.
    static PipeApi& system();
};

} // namespace orbelantine
