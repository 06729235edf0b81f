#include "tests/support/HandClock.h"
#include "tests/system/linux/Session.h"
#include "tools/soak/PhoneThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <iostream>
#include <iterator>
#include <random>
#include <thread>

namespace orbelantine::test {
namespace {

using namespace std::chrono_literals;
using phone::PhoneThread;
using Random = std::minstd_rand;
using Surface = FakeInputContext;

/// Of the environment, to run longer or to repeat one round.
constexpr const char* kRoundsVariable = "ORBELANTINE_STOP_ROUNDS";
constexpr const char* kSeedVariable = "ORBELANTINE_STOP_SEED";
constexpr unsigned kRounds = 1800;
/// Left clicks pause on purpose, so that few rounds have any.
constexpr unsigned kRoundsPerClicking = 16;
constexpr auto kPace = 20us;
constexpr std::uint64_t kEventsAfterTheEnd = 50;

unsigned fromEnvironment(const char* variable, unsigned fallback) {
    const char* value = std::getenv(variable);
    return value != nullptr ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : fallback;
}

int below(Random& random, unsigned bound) {
    return static_cast<int>(random() % bound);
}

void raiseKey(Surface& surface, Random& random) {
    const auto scanCode = static_cast<std::uint32_t>(kScanA + below(random, 9));
    switch (below(random, 32)) {
    case 0:
        return surface.onInputSurfaceLostFocus();
    case 1:
        return surface.onInputSurfaceDestroyed();
    default:
        return surface.simulateKey(below(random, 2) == 0, 0, scanCode);
    }
}

void raiseMouse(Surface& surface, Random& random) {
    const int x = below(random, 1000);
    switch (below(random, 4)) {
    case 0:
        return surface.onRelativeMouseMove(999, 999);
    case 1:
        return surface.onAbsoluteMouseMove(x, x);
    case 2:
        return surface.onMouseClickDown(IInputContext::MouseButtonRight, x, x);
    default:
        return surface.onMouseClickUp(IInputContext::MouseButtonRight, x, x);
    }
}

void raiseClick(Surface& surface, Random& random) {
    const int x = below(random, 1000);
    switch (below(random, 64)) {
    case 0:
        return surface.onLogicalDimensionsChanged(1080, 2340, 1.0, 0);
    case 1:
        return surface.onRotationChanged(1 + below(random, 4));
    case 2:
        return surface.onRelativeMouseWheel(1, x, x);
    case 3:
        return surface.onPointerDown(IInputContext::PointerTouch, 1, x, x, true);
    case 4:
        return surface.simulateClick(x, x);
    default:
        return raiseMouse(surface, random);
    }
}

/// A thread that raises one event after another as long as it lives.
class Input {
  public:
    using Raise = void (*)(Surface&, Random&);

    Input(Surface& surface, unsigned seed, Raise raise)
        : mThread([this, &surface, seed, raise] {
            Random random(seed);
            while (!mEnded) {
                raise(surface, random);
                ++mRaised;
                std::this_thread::sleep_for(kPace);
            }
        }) {}

    ~Input() {
        mEnded = true;
        mThread.join();
    }

    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    void awaitMore(std::uint64_t events) const {
        const std::uint64_t enough = mRaised + events;
        while (mRaised < enough)
            std::this_thread::sleep_for(kPace);
    }

  private:
    std::atomic<bool> mEnded = false;
    std::atomic<std::uint64_t> mRaised = 0;
    std::thread mThread;
};

class StopAnywhere : public testing::Test {
  protected:
    void playRound(unsigned seed, bool clicking) {
        Random random(seed);
        mSession.renew(mClock);
        const Input keys(*mSession.surface, seed, raiseKey);
        const Input mouse(*mSession.surface, seed, clicking ? raiseClick : raiseMouse);
        if (below(random, 4) == 0)
            mSession.client->connect(mSession.peer, {});
        else
            EXPECT_EQ(mSession.connect(), error_code());
        for (int n = below(random, 6); n > 0; --n)
            operate(random);
        std::this_thread::sleep_for(std::chrono::microseconds(below(random, 3000)));
        end(random, mouse);
    }

    void operate(Random& random) {
        HidInputClient& client = *mSession.client;
        const std::function<void()> operations[] = {
            [&] { client.connect(mSession.peer, {}); },
            [&] { client.disconnect({}); },
            [&] { client.pauseConnection(); },
            [&] { client.resumeConnection(); },
            [&] { client.setIdleTimeout(random() % 3); },
            [&] { client.forceDisconnect({}); },
            [&] { mClock.advance(1ms); },
            [&] { std::this_thread::sleep_for(std::chrono::microseconds(below(random, 2000))); },
        };
        operations[random() % std::size(operations)]();
    }

    void end(Random& random, const Input& mouse) {
        const int manner = below(random, 4);
        if (manner == 0) // With all that is posted.
            return mSession.client.reset();
        if (manner == 1)
            mSession.client->disconnect({});
        if (manner == 2)
            mSession.client->forceDisconnect({});
        if (manner != 1) {
            EXPECT_EQ(mSession.disconnect(), error_code());
            expectSilence(mouse);
        }
        mSession.client.reset();
    }

    void expectSilence(const Input& mouse) {
        ASSERT_TRUE(mPhone.awaitAllClosed());
        const PhoneThread::Seen before = mPhone.seen();
        mouse.awaitMore(kEventsAfterTheEnd);
        const PhoneThread::Seen after = mPhone.seen();
        EXPECT_EQ(after.tally.reports, before.tally.reports);
        EXPECT_EQ(after.opens, before.opens);
        mReports = after.tally.reports;
    }

    PhoneThread mPhone;
    HandClock mClock;
    Session mSession{mClock};
    std::uint64_t mReports = 0;
    Watchdog mWatchdog{60};
};

TEST_F(StopAnywhere, LeavesNothingUnderWay) {
    const unsigned rounds = fromEnvironment(kRoundsVariable, kRounds);
    const unsigned first = fromEnvironment(kSeedVariable, 1);
    const auto start = std::chrono::steady_clock::now();
    for (unsigned round = 0; round < rounds && !HasFailure(); ++round) {
        const std::string name =
            "round " + std::to_string(round) + ", seed " + std::to_string(first + round);
        const testing::ScopedTrace trace(__FILE__, __LINE__, name);
        mWatchdog.begin(name);
        playRound(first + round, (first + round) % kRoundsPerClicking == 0);
    }
    EXPECT_GT(mReports, 0U);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::cout << rounds << " rounds in " << took.count() << " s, " << mReports << " reports\n";
}

} // namespace
} // namespace orbelantine::test
