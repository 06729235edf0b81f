#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/linux/PipeFiles.h"
#include "ipc/pipe/linux/PipeLock.h"
#include "ipc/pipe/linux/PipeSocket.h"
#include "tests/ipc/linux/LinuxPipeTest.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/socket.h>

#include <csignal>
#include <fstream>
#include <thread>
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

std::size_t openDescriptors() {
    const fs::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

std::size_t usedMemory() {
    return ::mallinfo2().uordblks;
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

TEST_F(LinuxPipeTest, PipesThatComeAndGoLeaveNothing) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr int kCycles = 200;
#else
    constexpr int kCycles = 5000;
#endif
    const auto serve = [](int cycles) {
        for (int i = 0; i < cycles; ++i)
            if (Served server; server.error || server.accept())
                return false;
        return true;
    };
    const auto join = [this](int cycles) {
        for (int done = 0; done < cycles; std::this_thread::yield()) {
            if (api.waitNamedPipe(kPipe, 60'000) != 0)
                continue;
            if (const Joined client; client.error == 0) {
                awaitInput(client.pipe); // until the server is gone
                client.close();
                ++done;
            }
        }
        return true;
    };
    const auto run = [](const auto& here, const auto& there, int cycles) {
        auto other = std::async(std::launch::async, [&] { return there(cycles); });
        EXPECT_TRUE(here(cycles));
        EXPECT_TRUE(other.get());
    };
    // Only the main thread's memory is counted, so that each side has its turn there.
    run(serve, join, 20);
    run(join, serve, 20);
    const std::size_t descriptors = openDescriptors();
    const std::size_t memory = usedMemory();
    run(serve, join, kCycles);
    run(join, serve, kCycles);
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_LT(usedMemory(), memory + 64 * 1024);
    EXPECT_EQ(files(), std::set<std::string>());
}

} // namespace orbelantine::test
