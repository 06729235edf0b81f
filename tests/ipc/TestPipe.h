#pragma once

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/PipeApi.h"
#include "ipc/pipe/PipeName.h"

#include <future>
#include <string>
#include <utility>

namespace orbelantine::test {

/// The pipe of a test that has a folder of its own.
inline const std::string kPipe = std::string(kPipeNamePrefix) + "test";
/// Of messages both ways with overlapped operations, one instance, for this machine alone.
inline constexpr PipeApi::NamedPipe kTestPipe{0x40000003, 14, 1, 1024, 1024, 200};

/// An end that a client has got, or why not.
struct Joined {
    explicit Joined(const std::string& name = kPipe)
        : error(PipeApi::system().createFile(name, 0xC0000000, 0x40000000, pipe)) {}

    std::uint32_t close() const {
        PipeApi::system().closeHandle(pipe);
        return error;
    }

    PipeHandle pipe = kInvalidPipeHandle;
    std::uint32_t error;
};

/// Joins on a thread of its own, since that may take until the server has taken the client.
inline std::future<Joined> joining(const std::string& name = kPipe) {
    return std::async(std::launch::async, [name] { return Joined(name); });
}

/// A server with its event.
struct Served {
    explicit Served(const std::string& name = kPipe, void* descriptor = nullptr)
        : error(PipeApi::system().createNamedPipe(name, kTestPipe, descriptor, pipe)) {
        overlapped.event = PipeApi::system().createEvent();
    }

    ~Served() {
        PipeApi::system().closeHandle(overlapped.event);
        close();
    }

    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    std::uint32_t connect() { return PipeApi::system().connectNamedPipe(pipe, overlapped); }

    std::uint32_t wait(std::uint32_t timeout) const {
        return PipeApi::system().waitForSingleObject(overlapped.event, timeout);
    }

    std::uint32_t result() { return PipeApi::system().getOverlappedResult(pipe, overlapped); }

    /// Takes whoever comes.
    std::uint32_t accept() {
        if (const auto begun = connect(); begun != win32::kErrorIoPending)
            return begun == win32::kErrorPipeConnected ? 0 : begun;
        return wait(60'000) == PipeApi::kWaitObject ? result() : win32::kErrorTimeout;
    }

    PipeHandle take() { return std::exchange(pipe, kInvalidPipeHandle); }

    void close() {
        if (const PipeHandle closed = take(); closed != kInvalidPipeHandle)
            PipeApi::system().closeHandle(closed);
    }

    PipeHandle pipe = kInvalidPipeHandle;
    std::uint32_t error;
    Overlapped overlapped;
};

} // namespace orbelantine::test
