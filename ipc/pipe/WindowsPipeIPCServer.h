#pragma once

#include "core/common/config/KVStore.h"
#include "ipc/IIPCEndpoint.h"
#include "ipc/IIPCServer.h"
#include "ipc/pipe/PeerCheck.h"
#include "ipc/pipe/PipeDuplexHandler.h"
#include "ipc/pipe/PipeSystem.h"

#include <atomic>
#include <string>

namespace orbelantine {

/// The listening end of a named pipe with one instance: while an end that accept handed out is
/// open, the next accept fails. Only processes of the same user, on this computer, can connect.
class WindowsPipeIPCServer final : public IIPCServer {
  public:
    class ServerEndpoint;

    /// "signer_name" and "verify_trusted_signature" say which clients are taken (PeerPolicy).
    explicit WindowsPipeIPCServer(const KVStore& settings);
    WindowsPipeIPCServer(const KVStore& settings, PipeSystem system);
    ~WindowsPipeIPCServer() override;

    /// 1 the second time, and after close.
    void create(const std::string& name, error_code& ec) override;
    /// 20 before create and after close, 995 where close ended the wait, SecurityValidationFailure
    /// for a client that the settings refuse, otherwise what the system says. Throws
    /// std::runtime_error if there can be no event.
    [[nodiscard]] boost::shared_ptr<IIPCEndpoint> accept(error_code& ec) override;
    /// A waiting accept ends within 100 ms.
    void close() override;

  private:
    // The steps of accept, of its name since the log shows it.
    [[nodiscard]] PipeHandle accept(void* descriptor, error_code& ec);
    [[nodiscard]] bool accept(PipeHandle pipe, Overlapped& overlapped);
    [[nodiscard]] error_code accept(PipeHandle pipe);
    [[nodiscard]] error_code cleanUp(PipeHandle pipe, PipeHandle event);

    const PipeSystem mSystem;
    KVStore mSettings;
    std::string mPipeName;
    const PeerPolicy mPolicy;
    std::atomic<bool> mCreated = false;
};

/// The end that accept hands out. It can't connect: 10045.
class WindowsPipeIPCServer::ServerEndpoint final : public IIPCEndpoint {
  public:
    /// Takes over a connected pipe.
    ServerEndpoint(PipeApi& pipes, PipeHandle pipe);
    ~ServerEndpoint() override;

    void connect(const std::string& name, error_code& ec) override;
    /// 995 the second time.
    void close(error_code& ec) override;
    void write(const void* data, int size, error_code& ec) override;
    [[nodiscard]] int readSome(void* buffer, int size, error_code& ec) override;

  private:
    PipeApi& mPipes;
    std::atomic<PipeHandle> mPipe;
    PipeDuplexHandler mDuplex;
};

} // namespace orbelantine
