#include "tests/ipc/PipeFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace orbelantine::test {

PipeFolder::PipeFolder()
    : mFolder("/tmp/orb-pipes.XXXXXX")
    , mName("talk") {
    EXPECT_NE(::mkdtemp(mFolder.data()), nullptr);
    ::setenv("ORBELANTINE_PIPE_DIR", mFolder.c_str(), 1);
}

PipeFolder::~PipeFolder() {
    ::unsetenv("ORBELANTINE_PIPE_DIR");
    std::filesystem::remove_all(mFolder);
}

} // namespace orbelantine::test
