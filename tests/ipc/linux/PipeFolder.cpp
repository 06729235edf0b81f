#include "tests/ipc/PipeFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace orbelantine::test {

PipeFolder::PipeFolder()
    : mHome("/tmp/orbelantine-pipes-XXXXXX")
    , mName("test") {
    EXPECT_NE(::mkdtemp(mHome.data()), nullptr);
    // Made by the first server.
    ::setenv("ORBELANTINE_PIPE_DIR", (mHome + "/pipes").c_str(), 1);
}

PipeFolder::~PipeFolder() {
    ::unsetenv("ORBELANTINE_PIPE_DIR");
    std::filesystem::remove_all(mHome);
}

} // namespace orbelantine::test
