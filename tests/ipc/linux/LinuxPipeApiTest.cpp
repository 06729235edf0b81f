#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/linux/PipeFiles.h"
#include "ipc/pipe/linux/PipeLock.h"
#include "ipc/pipe/linux/PipeSocket.h"
#include "tests/ipc/linux/LinuxPipeTest.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <csignal>
#include <fstream>
#include <vector>

namespace orbelantine::test {

namespace {

namespace fs = std::filesystem;

const PipeFiles kFiles{"test.socket", "test.lock", "test.new"};

FileDescriptor opened(const fs::path& folder) {
    fs::create_directory(folder);
    ::chmod(folder.c_str(), 0700);
    return FileDescriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

} // namespace

TEST_F(LinuxPipeTest, OfTheClientsInLineTheFirstThatIsStillThereIsTaken) {
    Served server;
    const FileDescriptor pipes = opened(folder);
    FileDescriptor gone;
    ASSERT_EQ(pipe_socket::connectTo(pipes.get(), kFiles.socket, gone), 0);
    gone = {};
    FileDescriptor taken;
    ASSERT_EQ(pipe_socket::connectTo(pipes.get(), kFiles.socket, taken), 0);
    auto another = joining();
    EXPECT_EQ(server.connect(), win32::kErrorPipeConnected);
    EXPECT_EQ(another.get().error, win32::kErrorPipeBusy);
    char greeting = 0;
    EXPECT_EQ(::recv(taken.get(), &greeting, 1, 0), 1);
    EXPECT_EQ(greeting, 2);
    std::uint32_t id = 0;
    EXPECT_EQ(api.getNamedPipeClientProcessId(server.pipe, id), 0U);
    EXPECT_EQ(id, static_cast<std::uint32_t>(::getpid()));
}

TEST_F(LinuxPipeTest, ClientThatNobodyTakesGivesUp) {
    const Served server;
    EXPECT_EQ(Joined().error, win32::kErrorSemTimeout);
}

TEST_F(LinuxPipeTest, WaitForAClientEndsWithClose) {
    Served server;
    EXPECT_EQ(server.connect(), win32::kErrorIoPending);
    auto waiting = std::async(std::launch::async, [&] { return server.wait(60'000); });
    server.close();
    EXPECT_NE(waiting.get(), PipeApi::kWaitTimeout);
    EXPECT_EQ(files(), std::set<std::string>());
}

TEST_F(LinuxPipeTest, NamesOfAnyCharactersAreDifferentPipes) {
    const std::vector<std::string> names{"",
                                         ".",
                                         "..",
                                         "a",
                                         "A",
                                         "a/b",
                                         "a%2fb",
                                         "a.lock",
                                         "a.socket",
                                         std::string("a\0b", 3),
                                         "\xff\\*?",
                                         std::string(241, 'x'),
                                         std::string(240, 'x') + "y",
                                         std::string(100, '/')};
    std::vector<std::unique_ptr<Served>> servers;
    for (const std::string& name : names)
        servers.push_back(std::make_unique<Served>(kPipeNamePrefix + name));
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(servers[i]->error, 0U) << names[i];
        auto client = joining(kPipeNamePrefix + names[i]);
        EXPECT_EQ(servers[i]->accept(), 0U) << names[i];
        EXPECT_EQ(client.get().close(), 0U) << names[i];
    }
    EXPECT_TRUE(files().contains("a.lock")) << "readable";
    const std::string tooLong = kPipeNamePrefix + std::string(242, 'x');
    EXPECT_EQ(Served(tooLong).error, win32::kErrorFilenameTooLong);
    EXPECT_EQ(Joined(tooLong).error, win32::kErrorFilenameTooLong);
    EXPECT_EQ(Served("test").error, win32::kErrorInvalidParameter);
}

TEST_F(LinuxPipeTest, NameThatIsTakenStaysWithItsHolder) {
    const FileDescriptor pipes = opened(folder);
    FileDescriptor foreign;
    ASSERT_EQ(pipe_socket::listenAt(pipes.get(), kFiles, foreign), 0U);
    EXPECT_EQ(Served().error, win32::kErrorPipeBusy) << "somebody listens without the lock";
    EXPECT_EQ(files(), std::set<std::string>{kFiles.socket});
    foreign = {};
    EXPECT_EQ(Served().error, 0U) << "left behind";
    PipeLock lock;
    ASSERT_EQ(PipeLock::take(pipes.get(), kFiles.lock, lock), 0U);
    EXPECT_EQ(Served().error, win32::kErrorPipeBusy);
    EXPECT_TRUE(files().contains(kFiles.lock)) << "it is not ours to remove";
    lock.release(pipes.get(), kFiles.lock);
    std::ofstream(folder / kFiles.socket) << "precious";
    EXPECT_EQ(Served().error, win32::kErrorAccessDenied);
    EXPECT_EQ(fs::file_size(folder / kFiles.socket), 8U);
}

TEST_F(LinuxPipeTest, WaitEndsWhenTheSocketAppears) {
    const FileDescriptor pipes = opened(folder);
    PipeLock lock;
    ASSERT_EQ(PipeLock::take(pipes.get(), kFiles.lock, lock), 0U);
    auto waiting = std::async(std::launch::async, [&] { return api.waitNamedPipe(kPipe, 60'000); });
    FileDescriptor listener;
    ASSERT_EQ(pipe_socket::listenAt(pipes.get(), kFiles, listener), 0U);
    EXPECT_EQ(waiting.get(), 0U);
}

TEST_F(LinuxPipeTest, NameOfAServerThatWasKilledIsFree) {
    const pid_t child = childThat([] {
        const Served server;
        return ::raise(SIGKILL);
    });
    ASSERT_EQ(exitCodeOf(child), -SIGKILL);
    ASSERT_EQ(files(), (std::set<std::string>{kFiles.lock, kFiles.socket}));
    EXPECT_EQ(api.waitNamedPipe(kPipe, 60'000), win32::kErrorFileNotFound);
    EXPECT_EQ(Joined().error, win32::kErrorFileNotFound);
    Served server;
    auto client = joining();
    EXPECT_EQ(server.accept(), 0U);
    EXPECT_EQ(client.get().close(), 0U);
}

} // namespace orbelantine::test
