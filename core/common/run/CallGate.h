#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace orbelantine {

/// Counts the calls inside a service, so that it can be shut once they have left. Any thread may
/// call; a thread may enter again while it is inside.
class CallGate {
  public:
    /// One call, inside from its making to its end unless the gate was shut.
    class Call {
      public:
        explicit Call(CallGate& gate)
            : mGate(gate)
            , mInside(gate.enter()) {}

        ~Call() {
            if (mInside)
                mGate.leave();
        }

        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

        [[nodiscard]] bool inside() const { return mInside; }

      private:
        CallGate& mGate;
        bool mInside;
    };

    enum class Start { Open, Shut };

    explicit CallGate(Start start = Start::Open)
        : mCalls(start == Start::Open ? 0 : kShut) {}

    /// Lets nobody in any more and waits up to `bound` for the calls inside. False if some remain.
    [[nodiscard]] bool shut(std::chrono::milliseconds bound);

    /// Lets calls in, once it is shut and empty.
    void open() { mCalls.fetch_and(~kShut); }

  private:
    static constexpr std::uint64_t kShut = std::uint64_t{1} << 63;

    bool enter() noexcept {
        const bool open = (mCalls.fetch_add(1) & kShut) == 0;
        if (!open)
            leave();
        return open;
    }

    void leave() noexcept {
        if (mCalls.fetch_sub(1) == kShut + 1)
            tellEmpty();
    }

    void tellEmpty() noexcept;

    // The calls inside; kShut is added when the gate is shut.
    std::atomic<std::uint64_t> mCalls;
    std::mutex mMutex;
    std::condition_variable mEmpty;
};

} // namespace orbelantine
