#include "ipc/pipe/PipeApi.h"

#include "core/common/errors/ErrorCode.h"
#include "tests/ipc/windows/TestPipe.h"

#include <gtest/gtest.h>

namespace orbelantine::test {
namespace {

class WindowsPipeApi : public testing::Test {
  protected:
    static constexpr std::uint32_t kTimeout = 200;

    ~WindowsPipeApi() override {
        for (const PipeHandle handle : {mServer, mClient})
            if (handle != kInvalidPipeHandle)
                mApi.closeHandle(handle);
    }

    PipeApi::Error create(const std::string& name, PipeHandle& pipe) {
        return mApi.createNamedPipe(name, kTestPipe, nullptr, pipe);
    }

    PipeApi::Error join(PipeHandle& pipe) {
        return mApi.createFile(mName, kTestPipeAccess, kTestPipeFlags, pipe);
    }

    PipeApi& mApi = PipeApi::system();
    const std::string mName = testPipeName();
    PipeHandle mServer = kInvalidPipeHandle;
    PipeHandle mClient = kInvalidPipeHandle;
};

TEST_F(WindowsPipeApi, PipeHasOneInstanceAndANameOfBoundedLength) {
    ASSERT_EQ(create(mName, mServer), 0u);
    PipeHandle second = 77;
    EXPECT_EQ(create(mName, second), win32::kErrorPipeBusy);
    EXPECT_EQ(mApi.lastError(), win32::kErrorPipeBusy);
    EXPECT_EQ(create(mName + std::string(300, 'x'), second), win32::kErrorFilenameTooLong);
    EXPECT_EQ(second, 77);
}

TEST_F(WindowsPipeApi, ClientWaitsForAPipeThatIsThereAndFree) {
    EXPECT_EQ(mApi.waitNamedPipe(mName, kTimeout), win32::kErrorFileNotFound);
    EXPECT_EQ(join(mClient), win32::kErrorFileNotFound);
    EXPECT_EQ(mClient, kInvalidPipeHandle);
    ASSERT_EQ(create(mName, mServer), 0u);
    EXPECT_EQ(mApi.waitNamedPipe(mName, kTimeout), 0u);
    ASSERT_EQ(join(mClient), 0u);
    EXPECT_EQ(mApi.waitNamedPipe(mName, kTimeout), win32::kErrorSemTimeout);
}

TEST_F(WindowsPipeApi, EventTellsOnceOfTheClient) {
    ASSERT_EQ(create(mName, mServer), 0u);
    Overlapped overlapped;
    overlapped.event = mApi.createEvent();
    ASSERT_NE(overlapped.event, 0);
    ASSERT_EQ(mApi.connectNamedPipe(mServer, overlapped), win32::kErrorIoPending);
    EXPECT_EQ(mApi.waitForSingleObject(overlapped.event, 0), PipeApi::kWaitTimeout);
    EXPECT_EQ(mApi.getOverlappedResult(mServer, overlapped), win32::kErrorIoIncomplete);
    ASSERT_EQ(join(mClient), 0u);
    EXPECT_EQ(mApi.waitForSingleObject(overlapped.event, 10'000), PipeApi::kWaitObject);
    EXPECT_EQ(mApi.waitForSingleObject(overlapped.event, 0), PipeApi::kWaitTimeout);
    EXPECT_EQ(mApi.getOverlappedResult(mServer, overlapped), 0u);
    EXPECT_EQ(mApi.connectNamedPipe(mServer, overlapped), win32::kErrorPipeConnected);
    mApi.closeHandle(overlapped.event);
}

TEST_F(WindowsPipeApi, CancelledWaitForAClientIsAborted) {
    ASSERT_EQ(create(mName, mServer), 0u);
    Overlapped overlapped;
    overlapped.event = mApi.createEvent();
    ASSERT_EQ(mApi.connectNamedPipe(mServer, overlapped), win32::kErrorIoPending);
    mApi.cancelIo(mServer);
    EXPECT_EQ(mApi.waitForSingleObject(overlapped.event, 10'000), PipeApi::kWaitObject);
    EXPECT_EQ(mApi.getOverlappedResult(mServer, overlapped), win32::kErrorOperationAborted);
    mApi.closeHandle(overlapped.event);
}

TEST_F(WindowsPipeApi, BothEndsTellWhoIsAtTheOther) {
    constexpr std::uint32_t kQueryAndRead = 1040;
    ASSERT_EQ(create(mName, mServer), 0u);
    ASSERT_EQ(join(mClient), 0u);
    std::uint32_t client = 0;
    std::uint32_t server = 0;
    EXPECT_EQ(mApi.getNamedPipeClientProcessId(mServer, client), 0u);
    EXPECT_EQ(mApi.getNamedPipeServerProcessId(mClient, server), 0u);
    EXPECT_EQ(client, GetCurrentProcessId());
    EXPECT_EQ(server, GetCurrentProcessId());
    PipeHandle process = 0;
    ASSERT_EQ(mApi.openProcess(mServer, kQueryAndRead, client, process), 0u);
    std::wstring path;
    EXPECT_EQ(mApi.getModuleFileName(process, path), 0u);
    EXPECT_TRUE(path.ends_with(L"ipc_tests.exe"));
    mApi.closeHandle(process);
    EXPECT_NE(mApi.getModuleFileName(process, path), 0u);
    EXPECT_NE(mApi.openProcess(mServer, kQueryAndRead, 0xFFFFFFF0, process), 0u);
}

} // namespace
} // namespace orbelantine::test
