#pragma once

#include "core/common/run/KernelEvent.h"
#include "tests/ipc/PipePair.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace orbelantine::test {

/// Two ends joined in memory, whose operations go on until the other end, or the test, brings them
/// to an end: by the rules of Windows, without its system. The test fails if an operation outlives
/// its event or its end of the pipe.
class FakePair {
  public:
    using Error = TransferApi::Error;

    enum class Call { None, CreateEvent, SetEvent, Wait, Read, Write, Result, CancelIo };
    enum class Way { Read, Write };

    FakePair() = default;

    ~FakePair() {
        EXPECT_EQ(mEvents, 0);
        close(kServer);
        close(kClient);
    }

    FakePair(const FakePair&) = delete;
    FakePair& operator=(const FakePair&) = delete;

    [[nodiscard]] std::unique_ptr<TransferApi> api(Side side) {
        return std::make_unique<Api>(*this, side);
    }

    [[nodiscard]] PipeDuplexHandler::Pipe& end(Side side) { return mEnds.at(side); }

    void close(Side side) {
        const std::lock_guard lock(mMutex);
        for (const Way way : {Way::Read, Way::Write})
            EXPECT_FALSE(pending(side, way)) << "an operation outlives its end";
        end(side) = kInvalidPipeHandle;
        mBroken = true;
        for (Stream& stream : mStreams)
            advance(stream);
    }

    /// Runs before every call, on the caller's thread.
    std::function<void(Call)> onCall = [](Call) {};
    /// What one write takes at most, and how many messages lie in a way before writes have to wait.
    std::size_t writeLimit = SIZE_MAX;
    std::size_t capacity = 4;

    /// Lets the `nth` call of a kind fail, counted from the first of all.
    void fail(Call call, int nth, Error error) {
        const std::lock_guard lock(mMutex);
        mFaults[{call, nth}] = error;
    }

    [[nodiscard]] int calls(Call call) {
        const std::lock_guard lock(mMutex);
        return mCalls[call];
    }

    [[nodiscard]] bool isPending(Side side, Way way) {
        const std::lock_guard lock(mMutex);
        return pending(side, way).has_value();
    }

    /// Signals the event of the operation that goes on there, though it isn't over.
    void wake(Side side, Way way) {
        const std::lock_guard lock(mMutex);
        kernel_event::set(eventOf(pending(side, way).value().overlapped->event));
    }

  private:
    static constexpr std::uintptr_t kStatusPending = 0x103;
    static constexpr std::uint32_t kForever = 0xFFFFFFFF;

    struct Operation {
        Overlapped* overlapped;
        char* buffer;
        std::size_t size;
    };

    using Pending = std::optional<Operation>;

    // What goes to one side.
    struct Stream {
        std::deque<std::string> messages;
        Pending read;
        Pending write;
    };

    class Api final : public TransferApi {
      public:
        Api(FakePair& pair, Side side)
            : mPair(pair)
            , mSide(side) {}

        bool completesInPlace() const override { return false; }

        Handle createEvent() override {
            if (mPair.begin(Call::CreateEvent) != 0)
                return 0;
            const std::lock_guard lock(mPair.mMutex);
            ++mPair.mEvents;
            return reinterpret_cast<Handle>(kernel_event::create(true, false));
        }

        void setEvent(Handle event) override {
            static_cast<void>(mPair.begin(Call::SetEvent));
            kernel_event::set(eventOf(event));
        }

        void resetEvent(Handle event) override { kernel_event::reset(eventOf(event)); }

        std::uint32_t waitForMultipleObjects(std::span<const Handle> events) override {
            mLastError = mPair.begin(Call::Wait);
            if (mLastError != 0)
                return kernel_event::kWaitFailed;
            std::array<kernel_event::Handle, 3> handles{};
            std::ranges::transform(events, handles.begin(), eventOf);
            const auto result = kernel_event::waitForMany(handles.data(), 3, false, kForever);
            mLastError = result.error;
            return result.value;
        }

        void closeHandle(Handle event) override {
            const std::lock_guard lock(mPair.mMutex);
            for (const Way way : {Way::Read, Way::Write}) {
                const Pending& pending = mPair.pending(mSide, way);
                EXPECT_FALSE(pending && pending->overlapped->event == event);
            }
            --mPair.mEvents;
            kernel_event::close(eventOf(event));
        }

        Error lastError() override { return mLastError; }

        Error readFile(Handle pipe, void* buffer, std::uint32_t size,
                       Overlapped& overlapped) override {
            return start(Way::Read, pipe, buffer, size, overlapped);
        }

        Error writeFile(Handle pipe, const void* data, std::uint32_t size,
                        Overlapped& overlapped) override {
            return start(Way::Write, pipe, const_cast<void*>(data), size, overlapped);
        }

        Error getOverlappedResult(Handle, Overlapped& overlapped, std::uint32_t& count,
                                  bool wait) override {
            if (const Error error = mPair.begin(Call::Result))
                return error;
            std::unique_lock lock(mPair.mMutex);
            if (overlapped.internal == kStatusPending) {
                if (!wait)
                    return win32::kErrorIoIncomplete;
                lock.unlock();
                EXPECT_EQ(kernel_event::waitForOne(eventOf(overlapped.event), kForever).value, 0U);
                lock.lock();
            }
            count = static_cast<std::uint32_t>(overlapped.internalHigh);
            return static_cast<Error>(overlapped.internal);
        }

        // Of the calling thread's operations, and who calls has none.
        void cancelIo(Handle) override { static_cast<void>(mPair.begin(Call::CancelIo)); }

        void cancelIoEx(Handle, Overlapped& overlapped) override {
            const std::lock_guard lock(mPair.mMutex);
            for (const Way way : {Way::Read, Way::Write}) {
                Pending& pending = mPair.pending(mSide, way);
                if (pending && pending->overlapped == &overlapped)
                    finish(pending, win32::kErrorOperationAborted, 0);
            }
        }

      private:
        Error start(Way way, Handle pipe, void* buffer, std::uint32_t size,
                    Overlapped& overlapped) {
            if (const Error error = mPair.begin(way == Way::Read ? Call::Read : Call::Write))
                return error;
            if (pipe != mPair.end(mSide))
                return win32::kErrorInvalidHandle;
            return mPair.start(mSide, way, {&overlapped, static_cast<char*>(buffer), size});
        }

        FakePair& mPair;
        const Side mSide;
        Error mLastError = 0; // of the worker's thread alone
    };

    static kernel_event::Handle eventOf(PipeHandle handle) {
        return reinterpret_cast<kernel_event::Handle>(handle);
    }

    [[nodiscard]] Error begin(Call call) {
        onCall(call);
        const std::lock_guard lock(mMutex);
        const auto fault = mFaults.find({call, ++mCalls[call]});
        return fault == mFaults.end() ? 0 : fault->second;
    }

    [[nodiscard]] Pending& pending(Side side, Way way) {
        return way == Way::Read ? mStreams.at(side).read : mStreams.at(1 - side).write;
    }

    [[nodiscard]] Error start(Side side, Way way, const Operation& operation) {
        const std::lock_guard lock(mMutex);
        Stream& stream = mStreams.at(way == Way::Read ? side : 1 - side);
        if (mBroken && (way == Way::Write || stream.messages.empty()))
            return win32::kErrorBrokenPipe;
        Pending& pending = this->pending(side, way);
        EXPECT_FALSE(pending) << "two operations on one Overlapped";
        operation.overlapped->internal = kStatusPending;
        kernel_event::reset(eventOf(operation.overlapped->event));
        pending = operation;
        advance(stream);
        return pending ? win32::kErrorIoPending
                       : static_cast<Error>(operation.overlapped->internal);
    }

    void advance(Stream& stream) {
        if (stream.write && !mBroken && stream.messages.size() < capacity) {
            const std::size_t count = std::min(stream.write->size, writeLimit);
            stream.messages.emplace_back(stream.write->buffer, count);
            finish(stream.write, 0, count);
        }
        if (stream.read && !stream.messages.empty()) {
            give(stream);
            advance(stream);
        }
        if (mBroken)
            for (Pending* const pending : {&stream.read, &stream.write})
                if (*pending)
                    finish(*pending, win32::kErrorBrokenPipe, 0);
    }

    static void give(Stream& stream) {
        std::string& message = stream.messages.front();
        const std::size_t count = std::min(stream.read->size, message.size());
        std::copy_n(message.begin(), count, stream.read->buffer);
        message.erase(0, count);
        finish(stream.read, message.empty() ? 0 : win32::kErrorMoreData, count);
        if (message.empty())
            stream.messages.pop_front();
    }

    static void finish(Pending& pending, Error status, std::size_t count) {
        Overlapped& overlapped = *std::exchange(pending, std::nullopt)->overlapped;
        overlapped.internal = status;
        overlapped.internalHigh = count;
        kernel_event::set(eventOf(overlapped.event));
    }

    std::array<PipeDuplexHandler::Pipe, 2> mEnds{1, 2};
    std::mutex mMutex;
    std::array<Stream, 2> mStreams;
    bool mBroken = false;
    int mEvents = 0;
    std::map<Call, int> mCalls;
    std::map<std::pair<Call, int>, Error> mFaults;
};

} // namespace orbelantine::test
