#include "bench/AllocationCounter.h"
#include "bench/OneProcessor.h"
#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/pipe/PipeDuplexHandler.h"
#include "ipc/pipe/linux/PipeWire.h"

#include <benchmark/benchmark.h>
#include <sys/socket.h>

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <vector>

// Messages from one thread to another, beside the same bytes through the same kind of sockets.

namespace orbelantine {
namespace {

constexpr std::size_t kSmall = 64;
constexpr std::size_t kLarge = std::size_t{1024} * 1024;

/// An end with the library's calls.
class OurEnd {
  public:
    explicit OurEnd(int socket)
        : mSocket(socket)
        , mPipe(socket) {}

    void write(const std::vector<char>& message) {
        mDuplex.write(message.data(), static_cast<int>(message.size()), mError);
    }

    /// Of a whole message; false when there are no more.
    bool read(std::vector<char>& message) {
        const auto size = static_cast<int>(message.size());
        return mDuplex.readSome(message.data(), size, mError) == size;
    }

    void hangUp() { ::shutdown(mSocket.get(), SHUT_RDWR); }

  private:
    FileDescriptor mSocket;
    error_code mError;
    PipeDuplexHandler::Pipe mPipe;
    PipeDuplexHandler mDuplex{"bench", &mPipe};
};

/// The least that the system must do.
class BareEnd {
  public:
    explicit BareEnd(int socket)
        : mSocket(socket) {}

    void write(const std::vector<char>& message) {
        for (std::size_t sent = 0; sent < message.size(); sent += pipe_wire::kLargestPiece)
            ::send(mSocket.get(), message.data() + sent,
                   std::min(pipe_wire::kLargestPiece, message.size() - sent), MSG_NOSIGNAL);
    }

    bool read(std::vector<char>& message) {
        for (std::size_t got = 0; got < message.size();) {
            const auto size = ::recv(mSocket.get(), message.data() + got, message.size() - got, 0);
            if (size <= 0)
                return false;
            got += static_cast<std::size_t>(size);
        }
        return true;
    }

    void hangUp() { ::shutdown(mSocket.get(), SHUT_RDWR); }

  private:
    FileDescriptor mSocket;
};

/// Two ends, the further one of which a thread reads, and answers from if it `answers`.
template <class End>
class Link {
  public:
    Link(std::size_t size, bool answers)
        : mMessage(size, 'x')
        , mReader([this, answers, received = mMessage]() mutable {
            while (mFar.read(received))
                if (answers)
                    mFar.write(received);
        }) {}

    ~Link() {
        mNear.hangUp();
        mReader.join();
    }

    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    void send() { mNear.write(mMessage); }

    void receive() { mNear.read(mMessage); }

  private:
    struct Sockets {
        Sockets() {
            if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
                throw std::runtime_error("no sockets");
        }

        int ends[2];
    };

    const Sockets mSockets;
    End mNear{mSockets.ends[0]};
    End mFar{mSockets.ends[1]};
    std::vector<char> mMessage;
    std::thread mReader;
};

void countAllocations(benchmark::State& state, const bench::AllocationCounter& allocations) {
    state.counters["allocations"] = benchmark::Counter(static_cast<double>(allocations.count()),
                                                       benchmark::Counter::kAvgIterations);
}

template <class End>
void pingPong(benchmark::State& state) {
    const bench::OneProcessor one;
    Link<End> link(kSmall, true);
    link.send(); // The first line of a process's log makes the log.
    link.receive();
    const bench::AllocationCounter allocations;
    for (auto _ : state) {
        link.send();
        link.receive();
    }
    countAllocations(state, allocations);
}

template <class End>
void stream(benchmark::State& state) {
    const bench::OneProcessor one;
    Link<End> link(kLarge, false);
    link.send();
    const bench::AllocationCounter allocations;
    for (auto _ : state)
        link.send();
    countAllocations(state, allocations);
}

BENCHMARK(pingPong<OurEnd>)->Name("BM_PipePingPong/ours")->UseRealTime();
BENCHMARK(pingPong<BareEnd>)->Name("BM_PipePingPong/bare")->UseRealTime();
BENCHMARK(stream<OurEnd>)->Name("BM_PipeMebibyte/ours")->UseRealTime();
BENCHMARK(stream<BareEnd>)->Name("BM_PipeMebibyte/bare")->UseRealTime();

} // namespace
} // namespace orbelantine
