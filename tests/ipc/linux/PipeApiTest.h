#pragma once

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/PipeApi.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <set>
#include <string>

namespace orbelantine::test {

inline const std::string kPipePrefix = R"(\\.\pipe\LOCAL\)";
inline const std::string kPipe = kPipePrefix + "test";

/// A pipe folder of the test's own.
class PipeApiTest : public ::testing::Test {
  protected:
    PipeApiTest() {
        char made[] = "/tmp/orbelantine-pipes-XXXXXX";
        home = ::mkdtemp(made);
        folder = home / "pipes";
        ::setenv("ORBELANTINE_PIPE_DIR", folder.c_str(), 1);
    }

    ~PipeApiTest() override {
        ::unsetenv("ORBELANTINE_PIPE_DIR");
        std::filesystem::remove_all(home);
    }

    [[nodiscard]] std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.insert(entry.path().filename());
        return names;
    }

    std::filesystem::path home;
    std::filesystem::path folder;
    PipeApi& api = PipeApi::system();
};

/// An end that a client has got, or why not.
struct Joined {
    explicit Joined(const std::string& name = kPipe)
        : error(PipeApi::system().createFile(name, 0xC0000000, 0x40000000, pipe)) {}

    std::uint32_t close() const {
        PipeApi::system().closeHandle(pipe);
        return error;
    }

    PipeHandle pipe = kInvalidPipeHandle;
    std::uint32_t error;
};

/// Joins on a thread of its own, since that takes until the server has taken the client.
inline std::future<Joined> joining(const std::string& name = kPipe) {
    return std::async(std::launch::async, [name] { return Joined(name); });
}

/// A server with its event.
struct Served {
    explicit Served(const std::string& name = kPipe)
        : error(PipeApi::system().createNamedPipe(name, {}, nullptr, pipe)) {
        overlapped.event = PipeApi::system().createEvent();
    }

    ~Served() { close(); }

    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    std::uint32_t connect() { return PipeApi::system().connectNamedPipe(pipe, overlapped); }

    std::uint32_t wait(std::uint32_t timeout) const {
        return PipeApi::system().waitForSingleObject(overlapped.event, timeout);
    }

    std::uint32_t result() { return PipeApi::system().getOverlappedResult(pipe, overlapped); }

    /// Takes whoever comes.
    std::uint32_t accept() {
        if (const auto begun = connect(); begun != win32::kErrorIoPending)
            return begun == win32::kErrorPipeConnected ? 0 : begun;
        return wait(60'000) == PipeApi::kWaitObject ? result() : win32::kErrorTimeout;
    }

    void close() { PipeApi::system().closeHandle(pipe); }

    PipeHandle pipe = kInvalidPipeHandle;
    std::uint32_t error;
    Overlapped overlapped;
};

/// A process that does `work`, whose end is its exit code, without a test's clean-up.
template <class Work>
pid_t childThat(Work work) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    return child;
}

inline int exitCodeOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

/// Until the socket has something to read, or a client to accept.
inline void awaitInput(PipeHandle pipe) {
    pollfd input{static_cast<int>(pipe), POLLIN, 0};
    EXPECT_EQ(::poll(&input, 1, 60'000), 1);
}

} // namespace orbelantine::test
