#include "ipc/pipe/TransferApi.h"

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/windows/Win32.h"

namespace orbelantine {

namespace {

static_assert(win32::kErrorOperationAborted == ERROR_OPERATION_ABORTED);
static_assert(win32::kErrorIoPending == ERROR_IO_PENDING);
static_assert(win32::kErrorMoreData == ERROR_MORE_DATA);

class WindowsTransferApi final : public TransferApi {
  public:
    bool completesInPlace() const override { return false; }

    Handle createEvent() override {
        return pipeHandleOf(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    }

    void setEvent(Handle event) override { SetEvent(pipeNative(event)); }

    void resetEvent(Handle event) override { ResetEvent(pipeNative(event)); }

    std::uint32_t waitForMultipleObjects(std::span<const Handle> events) override {
        return WaitForMultipleObjects(static_cast<DWORD>(events.size()),
                                      reinterpret_cast<const HANDLE*>(events.data()), FALSE,
                                      INFINITE);
    }

    void closeHandle(Handle event) override { CloseHandle(pipeNative(event)); }

    Error lastError() override { return GetLastError(); }

    Error readFile(Handle pipe, void* buffer, std::uint32_t size, Overlapped& overlapped) override {
        DWORD count = 0;
        return pipeResult(ReadFile(pipeNative(pipe), buffer, size, &count, pipeNative(overlapped)));
    }

    Error writeFile(Handle pipe, const void* data, std::uint32_t size,
                    Overlapped& overlapped) override {
        DWORD count = 0;
        return pipeResult(WriteFile(pipeNative(pipe), data, size, &count, pipeNative(overlapped)));
    }

    Error getOverlappedResult(Handle pipe, Overlapped& overlapped, std::uint32_t& count,
                              bool wait) override {
        DWORD native = 0;
        const Error error = pipeResult(
            GetOverlappedResult(pipeNative(pipe), pipeNative(overlapped), &native, wait));
        count = native;
        return error;
    }

    void cancelIo(Handle pipe) override { CancelIo(pipeNative(pipe)); }

    void cancelIoEx(Handle pipe, Overlapped& overlapped) override {
        CancelIoEx(pipeNative(pipe), pipeNative(overlapped));
    }
};

} // namespace

std::unique_ptr<TransferApi> TransferApi::system() {
    return std::make_unique<WindowsTransferApi>();
}

} // namespace orbelantine
