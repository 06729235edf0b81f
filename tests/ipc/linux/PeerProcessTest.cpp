#include "ipc/pipe/linux/PipeSocket.h"
#include "tests/ipc/linux/LinuxPipeTest.h"

#include <fcntl.h>
#include <signal.h>

#include <fstream>
#include <iterator>
#include <optional>

namespace orbelantine::test {

namespace {

namespace fs = std::filesystem;

/// A server whose client is a process that runs a program of its own.
class PeerProcessTest : public LinuxPipeTest {
  protected:
    PeerProcessTest() {
        program = home / "program";
        fs::copy_file("/bin/sleep", program);
        server.emplace();
        EXPECT_EQ(server->connect(), win32::kErrorIoPending);
        int started[2] = {-1, -1};
        EXPECT_EQ(::pipe2(started, O_CLOEXEC), 0);
        child = childThat([this] {
            const FileDescriptor pipes(::open(folder.c_str(), O_PATH | O_CLOEXEC));
            FileDescriptor socket;
            if (pipe_socket::connectTo(pipes.get(), "test.socket", socket) != 0)
                return 1;
            ::fcntl(socket.get(), F_SETFD, 0);
            return ::execl(program.c_str(), "program", "600", nullptr);
        });
        ::close(started[1]);
        // Its end of the other pipe is closed by the program's start.
        awaitInput(started[0]);
        ::close(started[0]);
        EXPECT_EQ(server->wait(60'000), PipeApi::kWaitObject);
    }

    ~PeerProcessTest() override { end(); }

    void end() {
        if (child <= 0)
            return;
        ::kill(child, SIGKILL);
        EXPECT_EQ(exitCodeOf(std::exchange(child, 0)), -SIGKILL);
    }

    PipeHandle openPeer() {
        std::uint32_t id = 0;
        EXPECT_EQ(api.getNamedPipeClientProcessId(server->pipe, id), 0U);
        EXPECT_EQ(id, static_cast<std::uint32_t>(child));
        PipeHandle process = kInvalidPipeHandle;
        EXPECT_EQ(api.openProcess(server->pipe, 0, id, process), 0U);
        return process;
    }

    static std::string contentOf(const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    fs::path program;
    std::optional<Served> server;
    pid_t child = 0;
};

} // namespace

TEST_F(PeerProcessTest, ExecutableIsTheOneThatRunsWhateverTakesItsPlace) {
    const PipeHandle process = openPeer();
    std::ofstream(home / "other") << "another program";
    fs::rename(home / "other", program);
    std::wstring path;
    EXPECT_EQ(api.getModuleFileName(process, path), 0U);
    api.closeHandle(process);
    end();
    EXPECT_LT(path.size(), 260U);
    EXPECT_TRUE(contentOf(path) == contentOf("/bin/sleep"));
    server->close();
    EXPECT_FALSE(fs::exists(path)) << "it goes with the pipe";
}

TEST_F(PeerProcessTest, ProcessThatHasEndedHasNoExecutable) {
    const PipeHandle process = openPeer();
    end();
    std::wstring path;
    EXPECT_EQ(api.getModuleFileName(process, path), win32::kErrorNotFound);
    EXPECT_EQ(path, L"");
    api.closeHandle(process);
}

TEST_F(PeerProcessTest, OnlyThePeerCanBeOpened) {
    PipeHandle process = kInvalidPipeHandle;
    EXPECT_EQ(api.openProcess(server->pipe, 0, 1, process), win32::kErrorInvalidParameter);
    EXPECT_EQ(api.lastError(), win32::kErrorInvalidParameter);
    std::uint32_t id = 0;
    const Served unconnected(kPipeNamePrefix + std::string("other"));
    EXPECT_EQ(api.getNamedPipeClientProcessId(unconnected.pipe, id), win32::kErrorNotFound);
    EXPECT_EQ(api.getNamedPipeClientProcessId(12345, id), win32::kErrorInvalidHandle);
}

} // namespace orbelantine::test
