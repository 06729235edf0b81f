#include "ipc/pipe/WindowsPipeIPCEndpoint.h"

#include "core/common/OSAL.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/log/Log.h"
#include "ipc/pipe/PipeError.h"
#include "ipc/pipe/PipeName.h"

#include <chrono>
#include <utility>

namespace orbelantine {

ORB_OSAL_REGISTER(IIPCEndpoint, WindowsPipeIPCEndpoint, "WindowsPipeIPCEndpoint");
ORB_OSAL_REGISTER(IIPCEndpoint, IIPCEndpoint::Dummy, "IIPCEndpoint::Dummy");

namespace {

constexpr std::uint32_t kWaitMilliseconds = 200;
constexpr std::chrono::seconds kPauseWithoutServer(1);
constexpr std::uint32_t kReadAndWrite = 0xC0000000;
constexpr std::uint32_t kOverlappedFlag = 0x40000000;

} // namespace

WindowsPipeIPCEndpoint::WindowsPipeIPCEndpoint(const KVStore& settings)
    : WindowsPipeIPCEndpoint(settings, PipeSystem()) {}

WindowsPipeIPCEndpoint::WindowsPipeIPCEndpoint(const KVStore& settings, PipeSystem system)
    : mSystem(std::move(system))
    , mSettings(settings)
    , mPolicy(mSettings)
    , mDuplex("client_endpoint", &mPipe) {}

WindowsPipeIPCEndpoint::~WindowsPipeIPCEndpoint() {
    error_code ignored;
    close(ignored);
}

void WindowsPipeIPCEndpoint::connect(const std::string& name, error_code& ec) {
    ORB_TRACED();
    if (mPipe != kInvalidPipeHandle) {
        ec = pipeError(win32::kWsaIsConnected);
        return;
    }
    PipeHandle pipe = kInvalidPipeHandle;
    if (const PipeApi::Error error = connect(kPipeNamePrefix + name, pipe)) {
        ec = pipeError(error);
        return;
    }
    ec = connect(pipe);
    // Nobody else knows of the pipe until its server has been looked at.
    if (ec)
        mSystem.pipes->closeHandle(pipe);
    else
        mPipe = pipe;
}

PipeApi::Error WindowsPipeIPCEndpoint::connect(const std::string& fullName, PipeHandle& pipe) {
    const char* text = fullName.c_str();
    ORB_LOG(kLogDebug, "%s() waiting for pipe : %s..", text);
    while (const PipeApi::Error missing =
               mSystem.pipes->waitNamedPipe(fullName, kWaitMilliseconds)) {
        ORB_LOG(kLogDebug, "%s() waiting for a pipe to be available: %s..", text);
        if (mInterrupted) {
            ORB_LOG(kLogDebug, "%s() interrupted connection..");
            return win32::kErrorOperationAborted;
        }
        if (missing != win32::kErrorFileNotFound)
            continue;
        ORB_LOG(kLogDebug, "%s() no pipe seems to be created, waiting..");
        mSystem.clock->sleepFor(kPauseWithoutServer);
    }
    ORB_LOG(kLogDebug, "%s() opening pipe: %s.", text);
    const PipeApi::Error error =
        mSystem.pipes->createFile(fullName, kReadAndWrite, kOverlappedFlag, pipe);
    if (error)
        ORB_LOG(kLogError, "%s() CreateFile failed, error:%d.", error);
    return error;
}

error_code WindowsPipeIPCEndpoint::connect(PipeHandle pipe) {
    if (!mPolicy.verifySignature) {
        ORB_LOG(kLogDebug, "%s() pipe opened.");
        return pipeError(win32::kErrorSuccess);
    }
    ORB_LOG(kLogDebug, "%s() pipe opened - validating server signature..");
    const std::wstring path = peerPath(*mSystem.pipes, pipe, PeerRole::Server);
    if (path.empty()) {
        ORB_LOG(kLogError, "%s() Failed getting server path, rejecting server connection.");
        return IpcErrors::getErrorCode(IpcErrors::SecurityValidationFailure);
    }
    if (!peerIsTrusted(mSystem, mPolicy, path)) {
        ORB_LOG(kLogError, "%s() server signature verification failed.");
        return IpcErrors::getErrorCode(IpcErrors::SecurityValidationFailure);
    }
    ORB_LOG(kLogDebug, "%s() Server signature verified!");
    return pipeError(win32::kErrorSuccess);
}

void WindowsPipeIPCEndpoint::close(error_code& ec) {
    ORB_TRACED();
    mInterrupted = true;
    mDuplex.teardown();
    const PipeHandle pipe = mPipe.exchange(kInvalidPipeHandle);
    if (pipe == kInvalidPipeHandle) {
        ec = pipeError(win32::kErrorOperationAborted);
        return;
    }
    ORB_LOG(kLogDebug, "%s() before closing pipe.");
    mSystem.pipes->disconnectNamedPipe(pipe);
    ORB_LOG(kLogDebug, "%s() server disconnected");
    mSystem.pipes->closeHandle(pipe);
    ORB_LOG(kLogDebug, "%s() after closing pipe.");
}

void WindowsPipeIPCEndpoint::write(const void* data, int size, error_code& ec) {
    ORB_TRACED();
    mDuplex.write(data, size, ec);
}

int WindowsPipeIPCEndpoint::readSome(void* buffer, int size, error_code& ec) {
    ORB_TRACED();
    return mDuplex.readSome(buffer, size, ec);
}

} // namespace orbelantine
