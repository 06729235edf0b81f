#include "tests/ipc/FakeTransferApi.h"

#include "core/common/run/KernelEvent.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orbelantine::test {

namespace {

constexpr std::uintptr_t kStatusPending = 0x103;
constexpr std::uint32_t kForever = 0xFFFFFFFF;

kernel_event::Handle eventOf(PipeHandle handle) {
    return reinterpret_cast<kernel_event::Handle>(handle);
}

} // namespace

class FakePair::Api final : public TransferApi {
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

    Error readFile(Handle pipe, void* buffer, std::uint32_t size, Overlapped& overlapped) override {
        return start(Call::Read, Way::Read, pipe, buffer, size, overlapped);
    }

    Error writeFile(Handle pipe, const void* data, std::uint32_t size,
                    Overlapped& overlapped) override {
        return start(Call::Write, Way::Write, pipe, const_cast<void*>(data), size, overlapped);
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
            EXPECT_EQ(kernel_event::waitForOne(eventOf(overlapped.event), kForever).value, 0u);
            lock.lock();
        }
        count = static_cast<std::uint32_t>(overlapped.internalHigh);
        return static_cast<Error>(overlapped.internal);
    }

    void cancelIo(Handle) override {
        static_cast<void>(mPair.begin(Call::CancelIo));
        cancel([](const Operation& operation) {
            return operation.thread == std::this_thread::get_id();
        });
    }

    void cancelIoEx(Handle, Overlapped& overlapped) override {
        static_cast<void>(mPair.begin(Call::CancelIoEx));
        cancel([&](const Operation& operation) { return operation.overlapped == &overlapped; });
    }

  private:
    Error start(Call call, Way way, Handle pipe, void* buffer, std::uint32_t size,
                Overlapped& overlapped) {
        if (const Error error = mPair.begin(call))
            return error;
        if (pipe != mPair.end(mSide))
            return win32::kErrorInvalidHandle;
        return mPair.start(
            mSide, way,
            {&overlapped, static_cast<char*>(buffer), size, std::this_thread::get_id()});
    }

    template <class Wanted>
    void cancel(Wanted wanted) {
        const std::lock_guard lock(mPair.mMutex);
        for (const Way way : {Way::Read, Way::Write}) {
            Pending& pending = mPair.pending(mSide, way);
            if (pending && wanted(*pending))
                finish(pending, win32::kErrorOperationAborted, 0);
        }
    }

    FakePair& mPair;
    const Side mSide;
    Error mLastError = 0; // of the worker's thread alone
};

FakePair::~FakePair() {
    EXPECT_EQ(mEvents, 0);
    close(kServer);
    close(kClient);
}

std::unique_ptr<TransferApi> FakePair::api(Side side) {
    return std::make_unique<Api>(*this, side);
}

void FakePair::close(Side side) {
    const std::lock_guard lock(mMutex);
    for (const Way way : {Way::Read, Way::Write})
        EXPECT_FALSE(pending(side, way)) << "an operation outlives its end";
    end(side) = kInvalidPipeHandle;
    mBroken = true;
    for (Stream& stream : mStreams)
        advance(stream);
}

void FakePair::fail(Call call, int nth, Error error) {
    const std::lock_guard lock(mMutex);
    mFaults[{call, nth}] = error;
}

int FakePair::calls(Call call) {
    const std::lock_guard lock(mMutex);
    return mCalls[call];
}

bool FakePair::isPending(Side side, Way way) {
    const std::lock_guard lock(mMutex);
    return pending(side, way).has_value();
}

void FakePair::wake(Side side, Way way) {
    const std::lock_guard lock(mMutex);
    kernel_event::set(eventOf(pending(side, way).value().overlapped->event));
}

FakePair::Error FakePair::begin(Call call) {
    onCall(call);
    const std::lock_guard lock(mMutex);
    const auto fault = mFaults.find({call, ++mCalls[call]});
    return fault == mFaults.end() ? 0 : fault->second;
}

FakePair::Pending& FakePair::pending(Side side, Way way) {
    return way == Way::Read ? mStreams.at(side).read : mStreams.at(1 - side).write;
}

FakePair::Error FakePair::start(Side side, Way way, const Operation& operation) {
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
    return pending ? win32::kErrorIoPending : static_cast<Error>(operation.overlapped->internal);
}

void FakePair::advance(Stream& stream) {
    if (stream.write && !mBroken && stream.bytes < capacity)
        take(stream, std::min(stream.write->size, writeLimit));
    if (stream.read && !stream.messages.empty()) {
        give(stream);
        advance(stream);
    }
    if (mBroken)
        for (Pending* const pending : {&stream.read, &stream.write})
            if (*pending)
                finish(*pending, win32::kErrorBrokenPipe, 0);
}

void FakePair::take(Stream& stream, std::size_t count) {
    stream.messages.emplace_back(stream.write->buffer, count);
    stream.bytes += count;
    finish(stream.write, 0, count);
}

void FakePair::give(Stream& stream) {
    std::string& message = stream.messages.front();
    const std::size_t count = std::min(stream.read->size, message.size());
    std::copy_n(message.begin(), count, stream.read->buffer);
    stream.bytes -= count;
    message.erase(0, count);
    finish(stream.read, message.empty() ? 0 : win32::kErrorMoreData, count);
    if (message.empty())
        stream.messages.pop_front();
}

void FakePair::finish(Pending& pending, Error status, std::size_t count) {
    Overlapped& overlapped = *std::exchange(pending, std::nullopt)->overlapped;
    overlapped.internal = status;
    overlapped.internalHigh = count;
    kernel_event::set(eventOf(overlapped.event));
}

} // namespace orbelantine::test
