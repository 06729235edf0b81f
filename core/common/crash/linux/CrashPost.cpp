#include "core/common/crash/linux/CrashPost.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>

namespace orbelantine {

namespace {

using Word = std::atomic<std::uint32_t>;
using Milliseconds = std::chrono::milliseconds;

static_assert(Word::is_always_lock_free && sizeof(Word) == sizeof(std::uint32_t));

void wakeAll(Word& word) {
    (void)syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, INT32_MAX, nullptr, nullptr, 0);
}

/// Also comes back for no reason.
void sleepWhile(Word& word, std::uint32_t value, const timespec* bound) {
    (void)syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, bound, nullptr, 0);
}

Milliseconds steadyNow() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return Milliseconds(static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000);
}

/// Tries until `done` or until the time is over, asleep while the word doesn't change.
template <class Done>
bool waitUntil(Word& word, Milliseconds bound, const Done& done) {
    const Milliseconds end = steadyNow() + bound;
    for (;;) {
        const std::uint32_t before = word.load();
        if (done())
            return true;
        const Milliseconds left = end - steadyNow();
        if (left.count() <= 0)
            return false;
        const timespec time{static_cast<time_t>(left.count() / 1000),
                            static_cast<long>(left.count() % 1000 * 1000000)};
        sleepWhile(word, before, &time);
    }
}

} // namespace

bool CrashPost::turn(State from, State to) {
    std::uint32_t expected = from;
    return mState.compare_exchange_strong(expected, to);
}

void CrashPost::set(State state) {
    mState = state;
    wakeAll(mState);
}

CrashPost::Claim CrashPost::claim(std::chrono::milliseconds bound) {
    const pid_t caller = gettid();
    if (mState != kFree && mClaimant == caller)
        return Claim::Again;
    if (!waitUntil(mState, bound, [this] { return turn(kFree, kClaimed); }))
        return Claim::TimedOut;
    mClaimant = caller;
    return Claim::Taken;
}

int CrashPost::submit(std::chrono::milliseconds bound) {
    set(kPosted);
    const bool answered = waitUntil(mState, bound, [this] { return mState == kAnswered; });
    return answered ? mVerdict.load() : 1;
}

void CrashPost::release() {
    mClaimant = 0;
    set(kFree);
}

bool CrashPost::await() {
    for (;;) {
        const std::uint32_t state = mState;
        if (state == kClosed || state == kPosted)
            return state == kPosted;
        sleepWhile(mState, state, nullptr);
    }
}

void CrashPost::answer(int verdict) {
    mVerdict = verdict;
    set(kAnswered);
}

bool CrashPost::close(std::chrono::milliseconds bound) {
    const bool closed = waitUntil(mState, bound, [this] { return turn(kFree, kClosed); });
    wakeAll(mState);
    return closed;
}

void CrashPost::open() {
    mState = kFree;
}

} // namespace orbelantine
