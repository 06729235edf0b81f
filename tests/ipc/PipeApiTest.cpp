#include "ipc/pipe/PipeApi.h"

#include "tests/ipc/PipeFolder.h"
#include "tests/ipc/PipePair.h"
#include "tests/ipc/TestPipe.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

namespace orbelantine::test {
namespace {

/// What every system's pipes have in common.
class PipeApiTest : public testing::Test {
  protected:
    PipeApi& mApi = PipeApi::system();
    const PipeFolder mFolder;
    const std::string mName = mFolder.fullName();
};

TEST_F(PipeApiTest, ServerTakesOneClientAndTheNameUntilItCloses) {
    EXPECT_EQ(mApi.waitNamedPipe(mName, 60'000), win32::kErrorFileNotFound);
    EXPECT_EQ(mApi.lastError(), win32::kErrorFileNotFound);
    EXPECT_EQ(Joined(mName).error, win32::kErrorFileNotFound);
    Served server(mName);
    ASSERT_EQ(server.error, 0U);
    EXPECT_EQ(mApi.waitNamedPipe(mName, 200), 0U);
    EXPECT_EQ(server.connect(), win32::kErrorIoPending);
    EXPECT_EQ(server.wait(0), PipeApi::kWaitTimeout);
    EXPECT_EQ(server.result(), win32::kErrorIoIncomplete);
    auto first = joining(mName);
    EXPECT_EQ(server.wait(60'000), PipeApi::kWaitObject);
    EXPECT_EQ(server.result(), 0U);
    EXPECT_EQ(server.wait(0), PipeApi::kWaitTimeout) << "the first wait has reset it";
    const Joined client = first.get();
    ASSERT_EQ(client.error, 0U);

    EXPECT_EQ(mApi.waitNamedPipe(mName, 1), win32::kErrorSemTimeout);
    EXPECT_EQ(Joined(mName).error, win32::kErrorPipeBusy);
    EXPECT_EQ(Served(mName).error, win32::kErrorPipeBusy);
    EXPECT_EQ(server.connect(), win32::kErrorPipeConnected);
    client.close();
    server.close();
    EXPECT_EQ(mApi.waitNamedPipe(mName, 60'000), win32::kErrorFileNotFound);
    EXPECT_EQ(Served(mName + std::string(300, 'x')).error, win32::kErrorFilenameTooLong);
}

TEST_F(PipeApiTest, CancelledWaitForAClientIsAbortedAndMayBeginAnew) {
    Served server(mName);
    EXPECT_EQ(server.connect(), win32::kErrorIoPending);
    mApi.cancelIo(server.pipe);
    EXPECT_EQ(server.wait(60'000), PipeApi::kWaitObject);
    EXPECT_EQ(server.result(), win32::kErrorOperationAborted);
    EXPECT_EQ(server.connect(), win32::kErrorIoPending);
}

TEST_F(PipeApiTest, BothEndsTellWhoIsAtTheOther) {
    constexpr std::uint32_t kQueryAndRead = 1040;
    PipePair pair;
    std::uint32_t client = 0;
    std::uint32_t server = 0;
    EXPECT_EQ(mApi.getNamedPipeClientProcessId(pair.end(kServer), client), 0U);
    EXPECT_EQ(mApi.getNamedPipeServerProcessId(pair.end(kClient), server), 0U);
    EXPECT_EQ(client, static_cast<std::uint32_t>(::getpid()));
    EXPECT_EQ(server, client);
    PipeHandle process = 0;
    ASSERT_EQ(mApi.openProcess(pair.end(kServer), kQueryAndRead, client, process), 0U);
    std::wstring path;
    EXPECT_EQ(mApi.getModuleFileName(process, path), 0U);
    EXPECT_TRUE(std::filesystem::is_regular_file(path));
    mApi.closeHandle(process);
    EXPECT_NE(mApi.getModuleFileName(process, path), 0U);
    EXPECT_NE(mApi.openProcess(pair.end(kServer), kQueryAndRead, 0xFFFFFFF0, process), 0U);
}

} // namespace
} // namespace orbelantine::test
