#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "tests/phone/Packets.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>

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

/// A process that writes a line once it is ready.
class ChildProcess {
  public:
    /// `body` gives the exit status. Returns when the line is there, or when it has failed.
    explicit ChildProcess(const std::function<int()>& body) {
        Pipe output;
        mProcess = ::fork();
        if (mProcess == 0) {
            ::dup2(output.writer.get(), STDOUT_FILENO);
            ::_exit(body());
        }
        output.writer = FileDescriptor();
        std::array<char, 512> line{};
        if (const auto size = ::read(output.reader.get(), line.data(), line.size()); size > 0)
            mPrinted.assign(line.data(), static_cast<std::size_t>(size));
        else
            end(SIGKILL);
    }

    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    ~ChildProcess() { end(SIGKILL); }

    [[nodiscard]] bool runs() const { return mProcess > 0; }

    [[nodiscard]] const std::string& printed() const { return mPrinted; }

    /// The exit status once the signal has ended it; -1 when it was killed, or had ended before.
    int end(int signal) {
        if (!runs())
            return -1;
        int status = 0;
        ::kill(mProcess, signal);
        EXPECT_GT(::waitpid(std::exchange(mProcess, -1), &status, 0), 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t mProcess = -1;
    std::string mPrinted;
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
