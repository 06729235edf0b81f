#include "ipc/pipe/linux/PipeFolder.h"

#include "ipc/pipe/linux/PipeFiles.h"
#include "ipc/pipe/linux/PipeSocket.h"
#include "tests/ipc/linux/LinuxPipeTest.h"
#include "tests/support/CapturedLog.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <fstream>

namespace orbelantine::test {

namespace {

namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;

class PipeFolderTest : public LinuxPipeTest {
  protected:
    /// What server and client are told, and that the reason is in the log.
    std::uint32_t outcome(const std::string& reason) {
        CapturedLog log(kLogWarning);
        const std::uint32_t served = Served().error;
        EXPECT_EQ(log.missing({reason, "ORBELANTINE_PIPE_DIR"}), Texts{});
        EXPECT_EQ(api.waitNamedPipe(kPipe, 60'000), 0U) << "who waits learns it from joining";
        EXPECT_EQ(Joined().error, served);
        return served;
    }

    static mode_t modeOf(const fs::path& path) {
        struct stat status {};

        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 0777;
    }
};

/// Needs another user to be.
class PipeStrangerTest : public PipeFolderTest {
  protected:
    void SetUp() override {
        if (::geteuid() != 0)
            GTEST_SKIP() << "only root can be another user";
        ::chmod(home.c_str(), 0755);
        fs::create_directory(folder);
        ::chmod(folder.c_str(), 0700);
    }

    /// As childThat, for another user.
    template <class Work>
    static pid_t strangerWho(Work work) {
        return childThat(
            [&] { return ::setresuid(kNobody, kNobody, kNobody) == 0 ? work() : 100; });
    }
};

} // namespace

TEST_F(PipeFolderTest, FolderIsMadeForTheUserAlone) {
    const auto deep = home / "a" / "b" / "";
    ::setenv("ORBELANTINE_PIPE_DIR", deep.c_str(), 1);
    const mode_t former = ::umask(0);
    Served server;
    ::umask(former);
    EXPECT_EQ(server.error, 0U);
    EXPECT_EQ(modeOf(home / "a"), 0700U);
    EXPECT_EQ(modeOf(deep), 0700U);
    EXPECT_EQ(modeOf(deep / "test.socket"), 0600U);
    EXPECT_EQ(modeOf(deep / "test.lock"), 0600U);
}

TEST_F(PipeFolderTest, WithoutOneNamedTheFolderIsInTheSessionsOwn) {
    ::unsetenv("ORBELANTINE_PIPE_DIR");
    const char* const former = std::getenv("XDG_RUNTIME_DIR");
    const std::string kept = former ? former : "";
    ::setenv("XDG_RUNTIME_DIR", home.c_str(), 1);
    Served server;
    EXPECT_EQ(server.error, 0U);
    EXPECT_TRUE(fs::is_socket(home / "orbelantine" / "pipes" / "test.socket"));
    ::chmod((home / "orbelantine").c_str(), 0777);
    EXPECT_EQ(Joined().error, win32::kErrorAccessDenied) << "others may exchange what is in it";
    former ? ::setenv("XDG_RUNTIME_DIR", kept.c_str(), 1) : ::unsetenv("XDG_RUNTIME_DIR");
}

TEST_F(PipeFolderTest, FolderThatOthersMayEnterIsRefused) {
    for (const fs::perms mode : {fs::perms(0710), fs::perms(0701), fs::perms(0777)}) {
        fs::create_directory(folder);
        fs::permissions(folder, mode);
        EXPECT_EQ(outcome("others have access"), win32::kErrorAccessDenied);
        EXPECT_TRUE(fs::is_empty(folder));
    }
}

TEST_F(PipeFolderTest, LinkToAFolderIsRefused) {
    fs::create_directory(home / "real");
    fs::permissions(home / "real", fs::perms(0700));
    fs::create_directory_symlink(home / "real", folder);
    EXPECT_EQ(outcome("link or no folder"), win32::kErrorAccessDenied);
    fs::remove(folder);
    std::ofstream(folder) << "a file";
    EXPECT_EQ(outcome("link or no folder"), win32::kErrorAccessDenied);
}

TEST_F(PipeStrangerTest, FolderOfAnotherUserIsRefused) {
    ASSERT_EQ(::chown(folder.c_str(), kNobody, kNobody), 0);
    EXPECT_EQ(outcome("belongs to another user"), win32::kErrorAccessDenied);
}

TEST_F(PipeStrangerTest, StrangerWhoReachesTheSocketIsRefusedBeforeAnythingIsSaid) {
    Served server;
    ASSERT_EQ(server.connect(), win32::kErrorIoPending);
    ::chmod(folder.c_str(), 0755);
    ::chmod((folder / "test.socket").c_str(), 0666);
    CapturedLog log(kLogWarning);
    const pid_t stranger = strangerWho([this] {
        const FileDescriptor pipes(::open(folder.c_str(), O_PATH | O_CLOEXEC));
        FileDescriptor socket;
        if (pipe_socket::connectTo(pipes.get(), "test.socket", socket) != 0)
            return 1;
        ::send(socket.get(), "\0hello", 6, MSG_NOSIGNAL);
        awaitInput(socket.get());
        char byte = 0;
        return ::recv(socket.get(), &byte, 1, 0) <= 0 ? 0 : 2;
    });
    int status = 0;
    while (::waitpid(stranger, &status, WNOHANG) == 0)
        ASSERT_EQ(server.wait(10), PipeApi::kWaitTimeout);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(log.missing({"refused a process of another user"}), Texts{});
    ::chmod(folder.c_str(), 0700);
    auto client = joining();
    EXPECT_EQ(server.wait(60'000), PipeApi::kWaitObject);
    EXPECT_EQ(client.get().close(), 0U);
}

TEST_F(PipeStrangerTest, StrangersSocketIsNotTalkedTo) {
    ::chmod(folder.c_str(), 0777);
    const pid_t stranger = strangerWho([this] {
        const FileDescriptor pipes(::open(folder.c_str(), O_PATH | O_CLOEXEC));
        FileDescriptor listener;
        const PipeFiles files{"test.socket", "test.lock", "test.new"};
        return pipe_socket::listenAt(pipes.get(), files, listener) == 0 ? ::pause() : 1;
    });
    while (!fs::exists(folder / "test.socket") && ::waitpid(stranger, nullptr, WNOHANG) == 0)
        ::sched_yield();
    ::chmod(folder.c_str(), 0700);
    EXPECT_EQ(Joined().error, win32::kErrorAccessDenied);
    EXPECT_EQ(Served().error, win32::kErrorPipeBusy);
    ::kill(stranger, SIGKILL);
    EXPECT_EQ(exitCodeOf(stranger), -SIGKILL);
}

} // namespace orbelantine::test
