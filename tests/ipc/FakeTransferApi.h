#pragma once

#include "tests/ipc/PipePair.h"

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace orbelantine::test {

/// Two ends joined in memory, whose operations go on until the other end, or the test, brings them
/// to an end: by the rules of Windows, without its system. The test fails if an operation outlives
/// its event or its end of the pipe.
class FakePair {
  public:
    using Error = TransferApi::Error;

    enum class Call {
        None,
        CreateEvent,
        SetEvent,
        Wait,
        Read,
        Write,
        Result,
        CancelIo,
        CancelIoEx
    };
    enum class Way { Read, Write };

    FakePair() = default;
    ~FakePair();
    FakePair(const FakePair&) = delete;
    FakePair& operator=(const FakePair&) = delete;

    [[nodiscard]] std::unique_ptr<TransferApi> api(Side side);

    [[nodiscard]] PipeDuplexHandler::Pipe& end(Side side) { return mEnds.at(side); }

    void close(Side side);

    /// Runs before every call, on the caller's thread.
    std::function<void(Call)> onCall = [](Call) {};
    /// What one write takes at most, and what a way holds before writes have to wait.
    std::size_t writeLimit = SIZE_MAX;
    std::size_t capacity = 1024;

    /// Lets the `nth` call of a kind fail, counted from the first of all.
    void fail(Call call, int nth, Error error);

    [[nodiscard]] int calls(Call call);
    [[nodiscard]] bool isPending(Side side, Way way);
    /// Signals the event of the operation that goes on there, though it isn't over.
    void wake(Side side, Way way);

  private:
    class Api;

    struct Operation {
        Overlapped* overlapped;
        char* buffer;
        std::size_t size;
        std::thread::id thread;
    };

    using Pending = std::optional<Operation>;

    // What goes to one side.
    struct Stream {
        std::deque<std::string> messages;
        std::size_t bytes = 0;
        Pending read;
        Pending write;
    };

    [[nodiscard]] Error begin(Call call);
    [[nodiscard]] Pending& pending(Side side, Way way);
    [[nodiscard]] Error start(Side side, Way way, const Operation& operation);
    void advance(Stream& stream);
    static void take(Stream& stream, std::size_t count);
    static void give(Stream& stream);
    static void finish(Pending& pending, Error status, std::size_t count);

    std::array<PipeDuplexHandler::Pipe, 2> mEnds{1, 2};
    std::mutex mMutex;
    std::array<Stream, 2> mStreams;
    bool mBroken = false;
    int mEvents = 0;
    std::map<Call, int> mCalls;
    std::map<std::pair<Call, int>, Error> mFaults;
};

} // namespace orbelantine::test
