#pragma once

#include "tests/phone/Packets.h"
#include "tools/program/linux/FileDescriptor.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace orbelantine::phone {

/// A folder of its own for one test, gone with its content afterwards.
class TemporaryFolder {
  public:
    TemporaryFolder() { EXPECT_NE(::mkdtemp(mPath.data()), nullptr); }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    ~TemporaryFolder() { std::filesystem::remove_all(mPath); }

    [[nodiscard]] std::string operator/(const std::string& name) const {
        return mPath + "/" + name;
    }

  private:
    std::string mPath =
        (std::filesystem::temp_directory_path() / "phone-").string() + std::string(6, 'X');
};

/// Whoever polls the reader sees that the writer has been closed.
struct Pipe {
    Pipe() {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        reader = FileDescriptor(ends[0]);
        writer = FileDescriptor(ends[1]);
    }

    FileDescriptor reader;
    FileDescriptor writer;
};

inline sockaddr_un socketAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    EXPECT_LT(path.size(), sizeof(address.sun_path));
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    return address;
}

/// The library's end of one device handle.
class TestHost {
  public:
    using Bytes = packet::Bytes;

    explicit TestHost(const std::string& path)
        : mSocket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)) {
        const sockaddr_un address = socketAddress(path);
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

/// A server of device handles that is stepped by hand, under a clock that is set by hand.
template <class Server, auto kGoesOn>
class SteppedServerTest : public testing::Test {
  protected:
    virtual Server& server() = 0;

    /// Does all that there is to do now, or up to the server's end.
    auto run() {
        auto outcome = kGoesOn;
        for (int i = 0; outcome == kGoesOn && i < 8; ++i)
            outcome = server().step(std::chrono::milliseconds(0));
        return outcome;
    }

    void stop() { mStop.writer = FileDescriptor(); }

    TestHost open() { return TestHost(server().path()); }

    TestHost openInterrupt() {
        TestHost host = open();
        EXPECT_EQ(exchange(host, packet::kConnectInterrupt), packet::kSuccess);
        return host;
    }

    /// The reply to a packet, after letting the server run.
    std::optional<packet::Bytes> exchange(const TestHost& host, const packet::Bytes& packet) {
        host.send(packet);
        run();
        return host.received();
    }

    TemporaryFolder mFolder;
    Pipe mStop;
    std::chrono::milliseconds mNow{0};
};

} // namespace orbelantine::phone
