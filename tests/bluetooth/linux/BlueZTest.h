#pragma once

#include "bluetooth/radio/linux/BlueZBackend.h"
#include "core/common/errors/GenericError.h"
#include "core/common/run/IDelayTimer.h"
#include "tests/support/HandClock.h"
#include "tools/virtual_stack/linux/FakeBlueZ.h"
#include "tools/virtual_stack/linux/PrivateBus.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace orbelantine::test {

inline constexpr std::chrono::minutes kTooLong{1};

/// Whether it comes true in time; for what tells nobody.
template <class Condition>
[[nodiscard]] bool comesTrue(Condition condition) {
    const auto latest = std::chrono::steady_clock::now() + kTooLong;
    while (!condition() && std::chrono::steady_clock::now() < latest)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return condition();
}

/// A list that one thread fills and another waits for.
template <class Item>
class Arrivals {
  public:
    void add(Item item) {
        const std::lock_guard lock(mMutex);
        mItems.push_back(std::move(item));
        mChanged.notify_all();
    }

    /// All of them, once there are so many.
    std::vector<Item> await(std::size_t count) {
        std::unique_lock lock(mMutex);
        mChanged.wait_for(lock, kTooLong, [&] { return mItems.size() >= count; });
        return mItems;
    }

    std::vector<Item> take() {
        const std::lock_guard lock(mMutex);
        return std::exchange(mItems, {});
    }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<Item> mItems;
};

/// A hand clock that tells how long the timers are that were made.
class TimedClock final : public HandClock {
  public:
    [[nodiscard]] boost::shared_ptr<IDelayTimer> makeTimer(boost::asio::io_context& ioService,
                                                           TimePoint expiry) override {
        auto timer = HandClock::makeTimer(ioService, expiry);
        timers.add(expiry - now());
        return timer;
    }

    Arrivals<Duration> timers;
};

/// The value of one operation's code, once it completes.
class Outcome {
  public:
    /// A completion that tells this.
    [[nodiscard]] Completion completion() {
        return [values = mValues](const error_code& ec) { values->add(ec.value()); };
    }

    /// -1 if it doesn't come.
    [[nodiscard]] int value() {
        const auto values = mValues->await(1);
        return values.size() == 1 ? values.front() : -1;
    }

    [[nodiscard]] bool isThere() { return !mValues->await(0).empty(); }

  private:
    std::shared_ptr<Arrivals<int>> mValues = std::make_shared<Arrivals<int>>();
};

/// Address, name and class.
using Peer = std::tuple<std::wstring, std::wstring, unsigned long>;

/// A backend on a bus of its own, with BlueZ on it and an adapter that is on.
class BlueZTest : public testing::Test {
  protected:
    static constexpr const char* kPhone = "AA:BB:CC:00:00:01";
    static constexpr const char* kOther = "AA:BB:CC:00:00:02";
    static constexpr unsigned long kPhoneClass = 0x5A020C;

    void SetUp() override {
        if (!bus.runs())
            GTEST_SKIP() << "dbus-daemon is not installed";
        stack.emplace(stack::FakeBlueZ::Options{bus.address()});
        stack->addAdapter();
        make();
    }

    void make() {
        backend.emplace(bus.address(), clock);
        backend->onPeerFound.connect([this](const auto& address, const auto& name, auto type) {
            found.add({address.getStdStringAddress(), name, type});
        });
    }

    void listen() {
        backend->onAuthenticationRequest.connect(
            [this](const auto& address, const auto& name, auto type) {
                requests.add({address.getStdStringAddress(), name, type});
            });
    }

    void start() { EXPECT_EQ(backend->start(false).value(), 0); }

    void startAsked() {
        listen();
        start();
    }

    [[nodiscard]] static stack::DeviceSettings knownPhone() {
        return {.address = kPhone, .name = "Phone", .trusted = true};
    }

    [[nodiscard]] int run(void (BlueZBackend::*operation)(const CMacAddress&, Completion),
                          const char* address) {
        Outcome outcome;
        ((*backend).*operation)(CMacAddress(std::string(address)), outcome.completion());
        return outcome.value();
    }

    [[nodiscard]] int rescan() {
        Outcome outcome;
        backend->rescanCachedPeers(outcome.completion());
        return outcome.value();
    }

    /// An inquiry that listens by now.
    [[nodiscard]] Outcome inquire() {
        Outcome outcome;
        backend->discoverOnce(outcome.completion(), 3);
        EXPECT_EQ(clock.timers.await(1), std::vector<IClock::Duration>{kInquiry});
        return outcome;
    }

    /// What the agent has answered to the device's last question: the error, empty for consent.
    [[nodiscard]] std::string answer(std::size_t number = 1) {
        EXPECT_TRUE(stack->waitUntil(
            [&](const stack::Seen& seen) { return seen.count("answered") >= number; }));
        return stack->seen().last("answered").value_or(stack::Event{}).detail;
    }

    static constexpr IClock::Duration kInquiry = std::chrono::milliseconds(3 * 1280);

    stack::PrivateBus bus;
    TimedClock clock;
    Arrivals<Peer> found;
    Arrivals<Peer> requests;
    std::optional<stack::FakeBlueZ> stack;
    std::optional<BlueZBackend> backend;
};

} // namespace orbelantine::test
