#include "ipc/pipe/PipeApi.h"

#include "ipc/pipe/windows/Win32.h"

#include <psapi.h>

#include <array>
#include <cwchar>

namespace orbelantine {

namespace {

static_assert(PipeApi::kWaitObject == WAIT_OBJECT_0);
static_assert(PipeApi::kWaitTimeout == WAIT_TIMEOUT);

class WindowsPipeApi final : public PipeApi {
  public:
    Error lastError() override { return GetLastError(); }

    Error waitNamedPipe(const std::string& name, std::uint32_t timeout) override {
        return pipeResult(WaitNamedPipeA(name.c_str(), timeout));
    }

    Error createFile(const std::string& name, std::uint32_t access, std::uint32_t flags,
                     Handle& pipe) override {
        return opened(CreateFileA(name.c_str(), access, 0, nullptr, OPEN_EXISTING, flags, nullptr),
                      pipe);
    }

    Error createNamedPipe(const std::string& name, const NamedPipe& params, void* descriptor,
                          Handle& pipe) override {
        SECURITY_ATTRIBUTES security{sizeof(SECURITY_ATTRIBUTES), descriptor, FALSE};
        return opened(CreateNamedPipeA(name.c_str(), params.openMode, params.pipeMode,
                                       params.maxInstances, params.outBufferSize,
                                       params.inBufferSize, params.defaultTimeout, &security),
                      pipe);
    }

    Error connectNamedPipe(Handle pipe, Overlapped& overlapped) override {
        return pipeResult(ConnectNamedPipe(pipeNative(pipe), pipeNative(overlapped)));
    }

    void disconnectNamedPipe(Handle pipe) override { DisconnectNamedPipe(pipeNative(pipe)); }

    Error getOverlappedResult(Handle pipe, Overlapped& overlapped) override {
        DWORD count = 0;
        return pipeResult(
            GetOverlappedResult(pipeNative(pipe), pipeNative(overlapped), &count, FALSE));
    }

    void cancelIo(Handle pipe) override { CancelIo(pipeNative(pipe)); }

    Handle createEvent() override {
        return pipeHandleOf(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    }

    std::uint32_t waitForSingleObject(Handle event, std::uint32_t timeout) override {
        return WaitForSingleObject(pipeNative(event), timeout);
    }

    void closeHandle(Handle handle) override { CloseHandle(pipeNative(handle)); }

    Error getNamedPipeClientProcessId(Handle pipe, std::uint32_t& id) override {
        return told(GetNamedPipeClientProcessId, pipe, id);
    }

    Error getNamedPipeServerProcessId(Handle pipe, std::uint32_t& id) override {
        return told(GetNamedPipeServerProcessId, pipe, id);
    }

    Error openProcess(Handle, std::uint32_t access, std::uint32_t id, Handle& process) override {
        const HANDLE native = OpenProcess(access, FALSE, id);
        if (!native)
            return GetLastError();
        process = pipeHandleOf(native);
        return ERROR_SUCCESS;
    }

    Error getModuleFileName(Handle process, std::wstring& path) override {
        std::array<wchar_t, MAX_PATH> text{};
        const DWORD length = K32GetModuleFileNameExW(pipeNative(process), nullptr, text.data(),
                                                     static_cast<DWORD>(text.size()));
        if (length == 0)
            return GetLastError();
        path.assign(text.data(), wcsnlen(text.data(), text.size() - 1));
        return ERROR_SUCCESS;
    }

  private:
    static Error opened(HANDLE native, Handle& pipe) {
        if (native == INVALID_HANDLE_VALUE)
            return GetLastError();
        pipe = pipeHandleOf(native);
        return ERROR_SUCCESS;
    }

    static Error told(BOOL(WINAPI* call)(HANDLE, PULONG), Handle pipe, std::uint32_t& id) {
        ULONG native = 0;
        const Error error = pipeResult(call(pipeNative(pipe), &native));
        id = native;
        return error;
    }
};

} // namespace

PipeApi& PipeApi::system() {
    static WindowsPipeApi api;
    return api;
}

} // namespace orbelantine
