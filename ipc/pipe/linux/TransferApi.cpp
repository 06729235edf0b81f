#include "ipc/pipe/TransferApi.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "ipc/pipe/linux/MessageReader.h"
#include "ipc/pipe/linux/PipeWire.h"

#include <sys/uio.h>

#include <algorithm>
#include <atomic>
#include <iterator>

namespace orbelantine {

namespace wire = pipe_wire;

namespace {

// WAIT_FAILED
constexpr std::uint32_t kNoEvents = 0xFFFFFFFF;

TransferApi::Error sendPiece(int socket, const char* data, std::size_t size, bool isLast) {
    unsigned char lead = isLast ? wire::kLast : wire::kMoreFollows;
    iovec parts[] = {{&lead, 1}, {const_cast<char*>(data), size}};
    msghdr packet{};
    packet.msg_iov = parts;
    packet.msg_iovlen = std::size(parts);
    if (wire::uninterrupted([&] { return ::sendmsg(socket, &packet, MSG_NOSIGNAL); }) >= 0)
        return win32::kErrorSuccess;
    return errno == EPIPE || errno == ECONNRESET ? win32::kErrorNoData : windowsError(errno);
}

TransferApi::Error sendMessage(int socket, const char* data, std::size_t size) {
    TransferApi::Error error = win32::kErrorSuccess;
    std::size_t sent = 0;
    do {
        const std::size_t piece = std::min(size - sent, wire::kLargestPiece);
        error = sendPiece(socket, data + sent, piece, sent + piece == size);
        sent += piece;
    } while (!error && sent < size);
    return error;
}

/// A pipe is a connected SOCK_SEQPACKET socket, and its handle the descriptor.
class LinuxTransferApi final : public TransferApi {
  public:
    [[nodiscard]] bool completesInPlace() const override { return true; }

    Handle createEvent() override { return 0; }

    void setEvent(Handle) override {}

    void resetEvent(Handle) override {}

    std::uint32_t waitForMultipleObjects(std::span<const Handle>) override { return kNoEvents; }

    void closeHandle(Handle) override {}

    Error lastError() override { return win32::kErrorNotSupported; }

    Error readFile(Handle pipe, void* buffer, std::uint32_t size, Overlapped& overlapped) override {
        std::size_t count = 0;
        const Error error = mCancelled
                                ? win32::kErrorOperationAborted
                                : mReader.read(static_cast<int>(pipe),
                                               {static_cast<std::byte*>(buffer), size}, count);
        return finish(overlapped, error, count);
    }

    Error writeFile(Handle pipe, const void* data, std::uint32_t size,
                    Overlapped& overlapped) override {
        const Error error =
            mCancelled ? win32::kErrorOperationAborted
                       : sendMessage(static_cast<int>(pipe), static_cast<const char*>(data), size);
        return finish(overlapped, error, size);
    }

    Error getOverlappedResult(Handle, Overlapped& overlapped, std::uint32_t& count, bool) override {
        count = static_cast<std::uint32_t>(overlapped.internalHigh);
        return static_cast<Error>(overlapped.internal);
    }

    void cancelIo(Handle pipe) override {
        mCancelled = true;
        ::shutdown(static_cast<int>(pipe), SHUT_RDWR);
    }

    void cancelIoEx(Handle pipe, Overlapped&) override { cancelIo(pipe); }

  private:
    Error finish(Overlapped& overlapped, Error error, std::size_t count) const {
        if (error && error != win32::kErrorMoreData) {
            error = mCancelled ? win32::kErrorOperationAborted : error;
            count = 0;
        }
        overlapped.internal = error;
        overlapped.internalHigh = count;
        return error;
    }

    std::atomic<bool> mCancelled = false;
    MessageReader mReader;
};

} // namespace

std::unique_ptr<TransferApi> TransferApi::system() {
    return std::make_unique<LinuxTransferApi>();
}

} // namespace orbelantine
