#pragma once

#include "bluetooth/DriverApi.h"
#include "core/common/types/linux/FileDescriptor.h"

#include <memory>
#include <mutex>
#include <string>

namespace orbelantine {

/// A connection to one device's socket. Any thread may call. A write is one packet without a
/// reply; requests wait for each other, each until its reply or the hang-up.
class DeviceSocket {
  public:
    /// Takes over a connected SOCK_SEQPACKET socket.
    explicit DeviceSocket(int fd);

    /// kErrorBusy if too many wait to be accepted there.
    [[nodiscard]] static DriverApi::Error connect(const std::wstring& path,
                                                  std::unique_ptr<DeviceSocket>& socket);

    /// kErrorInvalidData for a reply that is too short, kErrorMoreData for one that is too long.
    [[nodiscard]] DriverApi::Error request(std::uint32_t code, const void* input,
                                           std::size_t inputSize, void* output,
                                           std::size_t outputSize, std::uint32_t& returned);
    [[nodiscard]] DriverApi::Error write(const void* data, std::size_t size);

    /// Wakes and fails every call in progress and to come.
    void shutDown();

    [[nodiscard]] int fd() const { return mFd.get(); }

  private:
    [[nodiscard]] DriverApi::Error send(std::uint32_t code, const void* data, std::size_t size);
    [[nodiscard]] DriverApi::Error sendWhole(std::uint32_t code, const void* data,
                                             std::size_t size);
    [[nodiscard]] DriverApi::Error sendInParts(std::uint32_t code, const void* data,
                                               std::size_t size);
    void discardUnasked();

    FileDescriptor mFd;
    std::mutex mRequestMutex;
};

} // namespace orbelantine
