#pragma once

#include "core/common/config/KVStore.h"
#include "ipc/IIPCEndpoint.h"
#include "ipc/pipe/PeerCheck.h"
#include "ipc/pipe/PipeDuplexHandler.h"
#include "ipc/pipe/PipeSystem.h"

#include <atomic>
#include <string>

namespace orbelantine {

/// The connecting end of a named pipe. It serves for one connection: closed, it stays closed; a
/// connection that failed may be tried again.
class WindowsPipeIPCEndpoint final : public IIPCEndpoint {
  public:
    /// "signer_name" and "verify_trusted_signature" say which servers are taken (PeerPolicy).
    explicit WindowsPipeIPCEndpoint(const KVStore& settings);
    WindowsPipeIPCEndpoint(const KVStore& settings, PipeSystem system);
    ~WindowsPipeIPCEndpoint() override;

    /// Waits for a server without limit; close ends the wait within 1.2 seconds, with 995. 10056
    /// while connected, SecurityValidationFailure for a server that the settings refuse, otherwise
    /// what the system says.
    void connect(const std::string& name, error_code& ec) override;
    /// 995 where nothing is connected; otherwise `ec` stays.
    void close(error_code& ec) override;
    void write(const void* data, int size, error_code& ec) override;
    [[nodiscard]] int readSome(void* buffer, int size, error_code& ec) override;

  private:
    // The steps of connect, of its name since the log shows it.
    [[nodiscard]] PipeApi::Error connect(const std::string& fullName, PipeHandle& pipe);
    [[nodiscard]] error_code connect(PipeHandle pipe);

    const PipeSystem mSystem;
    KVStore mSettings;
    const PeerPolicy mPolicy;
    std::atomic<PipeHandle> mPipe = kInvalidPipeHandle;
    std::atomic<bool> mInterrupted = false;
    PipeDuplexHandler mDuplex;
};

} // namespace orbelantine
