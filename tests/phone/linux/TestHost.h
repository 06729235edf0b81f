#pragma once

#include "tools/virtual_phone/linux/FileDescriptor.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace orbelantine::phone {

/// A folder of its own for one test, gone with its content afterwards.
class TemporaryFolder {
  public:
    TemporaryFolder() { EXPECT_NE(::mkdtemp(mPath.data()), nullptr); }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    ~TemporaryFolder() { std::filesystem::remove_all(mPath); }

    [[nodiscard]] std::string operator/(const char* name) const { return mPath + "/" + name; }

  private:
    std::string mPath =
        (std::filesystem::temp_directory_path() / "phone-").string() + std::string(6, 'X');
};

/// The library's end of one device handle.
class TestHost {
  public:
    using Bytes = std::vector<std::uint8_t>;

    explicit TestHost(const std::string& path)
        : mSocket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        EXPECT_LT(path.size(), sizeof(address.sun_path));
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        mOpen = ::connect(mSocket.get(), reinterpret_cast<const sockaddr*>(&address),
                          sizeof(address)) == 0;
    }

    [[nodiscard]] bool isOpen() const { return mOpen; }

    void send(const Bytes& packet) const {
        EXPECT_EQ(::send(mSocket.get(), packet.data(), packet.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(packet.size()));
    }

    /// What has arrived: a packet, an empty one at the hang-up, or nothing yet.
    [[nodiscard]] std::optional<Bytes> received() const { return receive(MSG_DONTWAIT); }

    /// Waits for a packet or the hang-up.
    [[nodiscard]] Bytes wait() const { return receive(0).value_or(Bytes{}); }

  private:
    [[nodiscard]] std::optional<Bytes> receive(int flags) const {
        Bytes bytes(256);
        const ssize_t size = ::recv(mSocket.get(), bytes.data(), bytes.size(), flags);
        if (size < 0 && errno == EAGAIN)
            return std::nullopt;
        bytes.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
        return bytes;
    }

    FileDescriptor mSocket;
    bool mOpen = false;
};

namespace packet {
inline const TestHost::Bytes kConnectControl = {0x00, 0x00, 0x22, 0x00, 0x55, 0x44, 0x33,
                                                0x22, 0x11, 0x00, 17,   0,    1,    0};
inline const TestHost::Bytes kConnectInterrupt = {0x00, 0x00, 0x22, 0x00, 0x55, 0x44, 0x33,
                                                  0x22, 0x11, 0x00, 19,   0,    2,    0};
inline const TestHost::Bytes kGetVersion = {0x08, 0x00, 0x22, 0x00};
inline const TestHost::Bytes kTypeA = {0, 0, 0, 0, 0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0};
inline const TestHost::Bytes kRelease = {0, 0, 0, 0, 0xA1, 2, 0, 0, 0, 0, 0, 0, 0, 0};
inline const TestHost::Bytes kSuccess = {0, 0, 0, 0};
inline const TestHost::Bytes kVersion4 = {0, 0, 0, 0, 4, 0};
inline const TestHost::Bytes kHangUp = {};
} // namespace packet

} // namespace orbelantine::phone
