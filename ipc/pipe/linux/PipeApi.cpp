#include "ipc/pipe/PipeApi.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "ipc/pipe/linux/ClientPipe.h"
#include "ipc/pipe/linux/HandleTable.h"
#include "ipc/pipe/linux/LastPipeError.h"
#include "ipc/pipe/linux/PeerProcess.h"
#include "ipc/pipe/linux/PipeSocket.h"
#include "ipc/pipe/linux/PollUntil.h"
#include "ipc/pipe/linux/ServerPipe.h"

#include <fcntl.h>
#include <sys/eventfd.h>

#include <cerrno>
#include <utility>

namespace orbelantine {

namespace {

/// Pipes are sockets in a folder; see docs/ipc.md.
class LinuxPipeApi final : public PipeApi {
  public:
    Error lastError() override { return lastPipeError(); }

    Error waitNamedPipe(const std::string& name, std::uint32_t timeout) override {
        return keptPipeError(waitForPipe(name, timeout));
    }

    Error createFile(const std::string& name, std::uint32_t, std::uint32_t, Handle& pipe) override {
        std::shared_ptr<PipeEnd> joined;
        if (const Error error = keptPipeError(joinPipe(name, joined)))
            return error;
        pipe = mPipes.add(joined->descriptor(), joined);
        return win32::kErrorSuccess;
    }

    Error createNamedPipe(const std::string& name, const NamedPipe&, void*, Handle& pipe) override {
        std::shared_ptr<ServerPipe> made;
        if (const Error error = keptPipeError(ServerPipe::make(name, made)))
            return error;
        pipe = mPipes.add(made->descriptor(), made);
        return win32::kErrorSuccess;
    }

    Error connectNamedPipe(Handle pipe, Overlapped& overlapped) override {
        const auto server = serverOf(pipe);
        const auto event = mEvents.find(overlapped.event);
        if (!server || !event)
            return keptPipeError(win32::kErrorInvalidHandle);
        event->belongTo(server);
        return keptPipeError(server->connect(event));
    }

    void disconnectNamedPipe(Handle) override {}

    Error getOverlappedResult(Handle pipe, Overlapped&) override {
        const auto server = serverOf(pipe);
        return keptPipeError(server ? server->result() : win32::kErrorInvalidHandle);
    }

    void cancelIo(Handle pipe) override {
        if (const auto server = serverOf(pipe))
            server->cancel();
    }

    Handle createEvent() override {
        FileDescriptor file(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
        // 0 is none, and free in a process without an input.
        if (file.get() == 0)
            file = FileDescriptor(::fcntl(0, F_DUPFD_CLOEXEC, 1));
        if (!file) {
            keptPipeError(windowsError(errno));
            return 0;
        }
        const auto event = std::make_shared<AcceptEvent>(std::move(file));
        return mEvents.add(event->descriptor(), event);
    }

    // Nothing would ever signal an event that was not given to connectNamedPipe.
    std::uint32_t waitForSingleObject(Handle event, std::uint32_t timeout) override {
        const auto found = mEvents.find(event);
        const auto server = found ? found->pipe() : nullptr;
        if (server)
            return server->wait(*found, timeout);
        keptPipeError(win32::kErrorInvalidHandle);
        return kWaitFailed;
    }

    void closeHandle(Handle handle) override {
        const auto pipe = mPipes.take(handle);
        if (const auto server = std::dynamic_pointer_cast<ServerPipe>(pipe)) {
            server->cancel();
            mEvents.take(server->event());
        }
        mEvents.take(handle);
        mProcesses.take(handle);
    }

    Error getNamedPipeClientProcessId(Handle pipe, std::uint32_t& id) override {
        return peerId(pipe, id);
    }

    Error getNamedPipeServerProcessId(Handle pipe, std::uint32_t& id) override {
        return peerId(pipe, id);
    }

    Error openProcess(Handle pipe, std::uint32_t, std::uint32_t id, Handle& process) override {
        const auto end = mPipes.find(pipe);
        std::shared_ptr<PeerProcess> opened;
        if (const Error error = keptPipeError(end ? PeerProcess::open(end, id, opened)
                                                  : win32::kErrorInvalidHandle))
            return error;
        process = mProcesses.add(opened->descriptor(), opened);
        return win32::kErrorSuccess;
    }

    Error getModuleFileName(Handle process, std::wstring& path) override {
        const auto peer = mProcesses.find(process);
        return keptPipeError(peer ? peer->executable(path) : win32::kErrorInvalidHandle);
    }

  private:
    std::shared_ptr<ServerPipe> serverOf(Handle pipe) const {
        return std::dynamic_pointer_cast<ServerPipe>(mPipes.find(pipe));
    }

    Error peerId(Handle pipe, std::uint32_t& id) const {
        const auto end = mPipes.find(pipe);
        return keptPipeError(end ? pipe_socket::peerProcessId(end->descriptor(), id)
                                 : win32::kErrorInvalidHandle);
    }

    HandleTable<PipeEnd> mPipes;
    HandleTable<AcceptEvent> mEvents;
    HandleTable<PeerProcess> mProcesses;
};

} // namespace

PipeApi& PipeApi::system() {
    static LinuxPipeApi api;
    return api;
}

} // namespace orbelantine
