#pragma once

#include "tests/ipc/PipeFolder.h"
#include "tests/ipc/TestPipe.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <set>

namespace orbelantine::test {

/// A test that looks into its pipe folder.
class LinuxPipeTest : public ::testing::Test {
  protected:
    [[nodiscard]] std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.insert(entry.path().filename());
        return names;
    }

    const PipeFolder mPipes;
    const std::filesystem::path folder = std::getenv("ORBELANTINE_PIPE_DIR");
    const std::filesystem::path home = folder.parent_path();
    PipeApi& api = PipeApi::system();
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
