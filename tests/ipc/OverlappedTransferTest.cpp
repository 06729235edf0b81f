#include "core/common/run/WorkerThread.h"
#include "ipc/pipe/PipeDuplexHandler.h"
#include "tests/ipc/FakeTransferApi.h"
#include "tests/ipc/HandlerCalls.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <system_error>

namespace orbelantine::test {
namespace {

using Call = FakePair::Call;
using PipeWay = FakePair::Way;

constexpr const char* kHandlerPrefix = "orbelantine::PipeDuplexHandler::";

std::unique_ptr<PipeDuplexHandler> makeEnd(FakePair& pair, Side side) {
    return std::make_unique<PipeDuplexHandler>("end", &pair.end(side), pair.api(side));
}

/// Waits for what another thread brings about soon.
template <class Condition>
void waitUntil(Condition condition) {
    while (!condition())
        std::this_thread::yield();
}

class OverlappedTransferTest : public testing::Test {
  protected:
    OverlappedTransferTest() {
        mPair.onCall = [this](Call call) {
            if (call == Call::SetEvent)
                mIsFlagged = true;
            if (call == mTearDownAt) {
                mTeardown = startCall([this] { mServer->teardown(); });
                waitUntil([this] { return mIsFlagged.load(); });
            }
        };
        mServer = makeEnd(mPair, kServer);
    }

    /// A read that brings nothing.
    error_code read() {
        error_code ec = kUntouched;
        EXPECT_EQ(readUpTo(*mServer, 10, ec), "");
        EXPECT_FALSE(mPair.isPending(kServer, PipeWay::Read));
        return ec;
    }

    /// A write of which nothing gets across.
    error_code write() {
        error_code ec = kUntouched;
        EXPECT_EQ(mServer->writeSome("text", 4, ec), 0);
        EXPECT_FALSE(mPair.isPending(kServer, PipeWay::Write));
        return ec;
    }

    void waitForPending(PipeWay way) {
        waitUntil([&] { return mPair.isPending(kServer, way); });
    }

    FakePair mPair;
    /// The call of the server's at whose beginning another thread's teardown has set its flag.
    std::atomic<Call> mTearDownAt = Call::None;
    std::atomic<bool> mIsFlagged = false;
    std::future<void> mTeardown;
    std::unique_ptr<PipeDuplexHandler> mServer;
};

TEST(OverlappedTransfer, WithoutAReadOrTeardownEventThereIsNoHandler) {
    const auto failsAt = [](int event, const std::string& line) {
        FakePair pair;
        pair.fail(Call::CreateEvent, event, win32::kErrorNotEnoughMemory);
        CapturedLog log(kLogDebug, kHandlerPrefix);
        try {
            makeEnd(pair, kServer);
            ADD_FAILURE() << "made without its event";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "failed creating event.");
        }
        EXPECT_EQ(log.told(), Texts{"debug PipeDuplexHandler() " + line});
    };
    failsAt(1, "failed creating read event.");
    failsAt(3, "failed creating teardown event.");
}

TEST(OverlappedTransfer, WithoutAThreadThereIsNoHandler) {
    FakePair pair;
    setThreadMaker([](std::function<void()>) -> std::thread {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    });
    EXPECT_THROW(makeEnd(pair, kServer), std::system_error);
    setThreadMaker(makeThread);
}

TEST(OverlappedTransfer, MissingWriteEventIsNoticedByTheWorkerAlone) {
    FakePair pair;
    pair.fail(Call::CreateEvent, 2, win32::kErrorNotEnoughMemory);
    CapturedLog log(kLogError, kHandlerPrefix);
    const auto server = makeEnd(pair, kServer);
    error_code ec;
    auto text = startCall([&] { return readUpTo(*server, 10, ec); });
    waitUntil([&] { return pair.isPending(kServer, PipeWay::Read) && pair.calls(Call::Wait) > 1; });
    server->teardown();
    EXPECT_EQ(text.get(), "");
    EXPECT_EQ(ec, kAborted);
    EXPECT_EQ(log.missing({"error run() unknown error. GetLastError:6."}), Texts{});
}

TEST(OverlappedTransfer, WorkerGoesOnAfterAWaitThatFailed) {
    FakePair pair;
    pair.fail(Call::Wait, 1, win32::kErrorNotEnoughMemory);
    CapturedLog log(kLogError, kHandlerPrefix);
    const auto server = makeEnd(pair, kServer);
    EXPECT_FALSE(writeAll(*server, "text"));
    server->teardown();
    EXPECT_EQ(log.told(), Texts{"error run() unknown error. GetLastError:8."});
}

TEST_F(OverlappedTransferTest, ShortWriteGoesOnWhereItStopped) {
    mPair.writeLimit = 3;
    EXPECT_FALSE(writeAll(*mServer, "0123456789"));
    EXPECT_EQ(mPair.calls(Call::Write), 4);
    const auto client = makeEnd(mPair, kClient);
    std::string text;
    error_code ec;
    while (!ec && text.size() < 10)
        text += readUpTo(*client, 10, ec);
    EXPECT_EQ(text, "0123456789");
}

TEST_F(OverlappedTransferTest, FailedStartGivesTheErrorOfTheSystem) {
    mPair.fail(Call::Read, 1, win32::kErrorGenFailure);
    mPair.fail(Call::Write, 2, win32::kErrorGenFailure);
    mPair.writeLimit = 3;
    CapturedLog log(kLogWarning, kHandlerPrefix);
    EXPECT_EQ(read(), systemError(win32::kErrorGenFailure));
    EXPECT_EQ(writeAll(*mServer, "text"), systemError(win32::kErrorGenFailure));
    EXPECT_EQ(log.missing({"warning writeSome() write file error."}), Texts{});
    EXPECT_EQ(mPair.calls(Call::Write), 2);
}

TEST_F(OverlappedTransferTest, WhoFoundTheEndAliveJustBeforeTeardownIsReleased) {
    const struct {
        Call call;
        std::uint32_t error;
    } cases[] = {{Call::Read, 0}, {Call::Read, win32::kErrorGenFailure}, {Call::Write, 0}};

    mPair.capacity = 0;
    for (const auto& begun : cases) {
        mServer = makeEnd(mPair, kServer);
        mIsFlagged = false;
        mPair.fail(begun.call, mPair.calls(begun.call) + 1, begun.error);
        mTearDownAt = begun.call;
        EXPECT_EQ(begun.call == Call::Read ? read() : write(), kAborted);
        mTeardown.get();
        EXPECT_EQ(read(), kAborted);
    }
    EXPECT_EQ(mPair.calls(Call::Read), 2);
}

TEST_F(OverlappedTransferTest, TeardownLeavesNothingPendingOfThoseWhoWait) {
    CapturedLog log(kLogDebug, kHandlerPrefix);
    EXPECT_FALSE(writeAll(*mServer, "text"));
    mPair.capacity = 0;
    auto reader = startCall([this] { return read(); });
    auto writer = startCall([this] { return write(); });
    waitForPending(PipeWay::Read);
    waitForPending(PipeWay::Write);
    mServer->teardown();
    EXPECT_FALSE(mPair.isPending(kServer, PipeWay::Read));
    EXPECT_FALSE(mPair.isPending(kServer, PipeWay::Write));
    EXPECT_EQ(reader.get(), kAborted);
    EXPECT_EQ(writer.get(), kAborted);
    EXPECT_EQ(mPair.calls(Call::CancelIo), 1);
    EXPECT_EQ(log.missing({"debug writeSome() waiting for write to finish.",
                           "debug run() write event signaled.",
                           "debug readSome() waiting for read to finish.", "debug run() tore down.",
                           "warning readSome() tore down."}),
              Texts{});
}

TEST_F(OverlappedTransferTest, FailureOnTheWayIsToldAndLeavesNothingPending) {
    CapturedLog log(kLogWarning, kHandlerPrefix);
    mPair.fail(Call::Result, 2, win32::kErrorGenFailure);
    EXPECT_FALSE(writeAll(*mServer, "text"));
    EXPECT_EQ(write(), systemError(win32::kErrorFileNotFound));
    mPair.capacity = 0;
    auto reader = startCall([this] { return read(); });
    waitForPending(PipeWay::Read);
    mPair.wake(kServer, PipeWay::Read);
    EXPECT_EQ(reader.get(), systemError(win32::kErrorFileNotFound));
    auto writer = startCall([this] { return write(); });
    waitForPending(PipeWay::Write);
    mPair.wake(kServer, PipeWay::Write);
    EXPECT_EQ(writer.get(), systemError(win32::kErrorFileNotFound));
    EXPECT_EQ(log.told(),
              (Texts{"warning writeSome() written successfully, amount:4, wanted:4.",
                     "warning writeSome() overlapped result failure, getLastError:31, ret:0.",
                     "warning readSome() overlapped result failure, getLastError:996, ret:0, "
                     "buffersize:10.",
                     "warning writeSome() overlapped result failure, getLastError:996, ret:0."}));
}

} // namespace
} // namespace orbelantine::test
