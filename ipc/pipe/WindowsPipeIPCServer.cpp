#include "ipc/pipe/WindowsPipeIPCServer.h"

#include "core/common/OSAL.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/log/Log.h"
#include "ipc/pipe/CurrentUser.h"
#include "ipc/pipe/PipeError.h"
#include "ipc/pipe/PipeName.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <memory>
#include <stdexcept>
#include <utility>

namespace orbelantine {

ORB_OSAL_REGISTER(IIPCServer, WindowsPipeIPCServer, "WindowsPipeIPCServer");
ORB_OSAL_REGISTER(IIPCServer, IIPCServer::Dummy, "IIPCServer::Dummy");

namespace {

constexpr PipeApi::NamedPipe kSinglePipe{
    .openMode = 0x40000003, // overlapped, both ways
    .pipeMode = 14,         // messages written and read, from this computer only, blocking
    .maxInstances = 1,
    .outBufferSize = 1024,
    .inBufferSize = 1024,
    .defaultTimeout = 200,
};
constexpr std::uint32_t kTurnMilliseconds = 100;
constexpr std::uint32_t kDescriptorRevision = 1;

// Protected from what is inherited, and one entry: all rights for that user. The blank is part of
// the text.
std::wstring accessFor(const std::wstring& sid) {
    return L"D:PAI(A;; FA;;;" + sid + L")";
}

error_code refused() {
    return IpcErrors::getErrorCode(IpcErrors::SecurityValidationFailure);
}

} // namespace

WindowsPipeIPCServer::WindowsPipeIPCServer(const KVStore& settings)
    : WindowsPipeIPCServer(settings, PipeSystem()) {}

WindowsPipeIPCServer::WindowsPipeIPCServer(const KVStore& settings, PipeSystem system)
    : mSystem(std::move(system))
    , mSettings(settings)
    , mPolicy(mSettings) {}

WindowsPipeIPCServer::~WindowsPipeIPCServer() {
    close();
}

void WindowsPipeIPCServer::create(const std::string& name, error_code& ec) {
    ORB_TRACED();
    if (mCreated || !mPipeName.empty()) {
        ec = pipeError(win32::kErrorInvalidFunction);
        return;
    }
    mPipeName = kPipeNamePrefix + name;
    mCreated = true;
}

boost::shared_ptr<IIPCEndpoint> WindowsPipeIPCServer::accept(error_code& ec) {
    ORB_TRACED();
    if (!mCreated) {
        ec = pipeError(win32::kErrorBadUnit);
        return {};
    }
    UserApi::Error error = 0;
    const std::wstring sid = getCurrentUserSid(*mSystem.user, error);
    if (sid.empty()) {
        ORB_LOG(kLogError, "%s() failed getting current user sid");
        ec = pipeError(error);
        return {};
    }
    void* memory = nullptr;
    error =
        mSystem.user->convertStringSecurityDescriptor(accessFor(sid), kDescriptorRevision, memory);
    if (error) {
        ORB_LOG(kLogError, "%s() Unable to set ACL information. Error: %d", error);
        ec = pipeError(error);
        return {};
    }
    const auto free = [this](void* descriptor) { mSystem.user->localFree(descriptor); };
    const std::unique_ptr<void, decltype(free)> descriptor(memory, free);
    const PipeHandle pipe = accept(descriptor.get(), ec);
    if (pipe == kInvalidPipeHandle)
        return {};
    try {
        return boost::make_shared<ServerEndpoint>(*mSystem.pipes, pipe);
    } catch (...) {
        mSystem.pipes->closeHandle(pipe);
        throw;
    }
}

PipeHandle WindowsPipeIPCServer::accept(void* descriptor, error_code& ec) {
    ORB_LOG(kLogDebug, "%s() opening pipe : %s.", mPipeName.c_str());
    PipeHandle pipe = kInvalidPipeHandle;
    if (const PipeApi::Error error =
            mSystem.pipes->createNamedPipe(mPipeName, kSinglePipe, descriptor, pipe)) {
        ORB_LOG(kLogDebug, "%s() failed creating named pipe.");
        ec = pipeError(error);
        return kInvalidPipeHandle;
    }
    Overlapped overlapped;
    overlapped.event = mSystem.pipes->createEvent();
    if (overlapped.event == 0) {
        ORB_LOG(kLogDebug, "%s() failed creating accept event.");
        throw std::runtime_error("failed creating event.");
    }
    if (!accept(pipe, overlapped) || !mCreated) {
        ec = cleanUp(pipe, overlapped.event);
        return kInvalidPipeHandle;
    }
    // From here on the event stays open.
    if (const error_code refusal = accept(pipe)) {
        mSystem.pipes->closeHandle(pipe);
        ec = refusal;
        return kInvalidPipeHandle;
    }
    return pipe;
}

bool WindowsPipeIPCServer::accept(PipeHandle pipe, Overlapped& overlapped) {
    PipeApi& pipes = *mSystem.pipes;
    ORB_LOG(kLogDebug, "%s() about to connect to named pipe");
    const PipeApi::Error error = pipes.connectNamedPipe(pipe, overlapped);
    ORB_LOG(kLogDebug, "%s() back from connect named pipe.");
    if (!error)
        return true;
    if (error == win32::kErrorPipeConnected) {
        ORB_LOG(kLogDebug, "%s() pipe was connected immediately.");
        return true;
    }
    if (error != win32::kErrorIoPending) {
        ORB_LOG(kLogDebug, "%s() unknown ConnectNamedPipe error.");
        return false;
    }
    std::uint32_t waited = 0;
    do
        waited = pipes.waitForSingleObject(overlapped.event, kTurnMilliseconds);
    while (waited == PipeApi::kWaitTimeout && mCreated);
    return waited == PipeApi::kWaitObject && !pipes.getOverlappedResult(pipe, overlapped);
}

error_code WindowsPipeIPCServer::accept(PipeHandle pipe) {
    if (!mPolicy.verifySignature) {
        ORB_LOG(kLogDebug, "%s() Accepted connection.");
        return {};
    }
    ORB_LOG(kLogDebug, "%s() Accepted connection - validating signature..");
    const std::wstring path = peerPath(*mSystem.pipes, pipe, PeerRole::Client);
    if (path.empty()) {
        ORB_LOG(kLogError, "%s() Failed getting client path, rejecting client.");
        return refused();
    }
    if (!peerIsTrusted(mSystem, mPolicy, path)) {
        ORB_LOG(kLogError, "%s() Client signature verification failed.");
        return refused();
    }
    ORB_LOG(kLogDebug, "%s() Client signature verified!");
    return {};
}

error_code WindowsPipeIPCServer::cleanUp(PipeHandle pipe, PipeHandle event) {
    PipeApi& pipes = *mSystem.pipes;
    pipes.closeHandle(event);
    pipes.cancelIo(pipe);
    pipes.closeHandle(pipe);
    return pipeError(mCreated ? pipes.lastError() : win32::kErrorOperationAborted);
}

void WindowsPipeIPCServer::close() {
    ORB_TRACED();
    mCreated = false;
}

WindowsPipeIPCServer::ServerEndpoint::ServerEndpoint(PipeApi& pipes, PipeHandle pipe)
    : mPipes(pipes)
    , mPipe(pipe)
    , mDuplex("server_endoint", &mPipe) {}

WindowsPipeIPCServer::ServerEndpoint::~ServerEndpoint() {
    error_code ignored;
    close(ignored);
}

void WindowsPipeIPCServer::ServerEndpoint::connect(const std::string&, error_code& ec) {
    ORB_TRACED();
    ec = pipeError(win32::kWsaOperationNotSupported);
}

void WindowsPipeIPCServer::ServerEndpoint::close(error_code& ec) {
    ORB_TRACED();
    mDuplex.teardown();
    const PipeHandle pipe = mPipe.exchange(kInvalidPipeHandle);
    if (pipe == kInvalidPipeHandle) {
        ec = pipeError(win32::kErrorOperationAborted);
        return;
    }
    mPipes.closeHandle(pipe);
    ec = pipeError(win32::kErrorSuccess);
}

void WindowsPipeIPCServer::ServerEndpoint::write(const void* data, int size, error_code& ec) {
    ORB_TRACED();
    mDuplex.write(data, size, ec);
}

int WindowsPipeIPCServer::ServerEndpoint::readSome(void* buffer, int size, error_code& ec) {
    ORB_TRACED();
    return mDuplex.readSome(buffer, size, ec);
}

} // namespace orbelantine
