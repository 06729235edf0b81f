#include "tests/bluetooth/linux/BlueZTest.h"
#include "tests/support/CapturedLog.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <future>
#include <iterator>
#include <random>

namespace orbelantine::test {

namespace {

std::ptrdiff_t entriesOf(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), {});
}

class BlueZLifeTest : public BlueZTest {
  protected:
    /// A pairing, an inquiry and one more that wait.
    std::vector<Outcome> begin() {
        auto silent = knownPhone();
        silent.decision = stack::Decision::Silent;
        stack->addDevice(silent);
        EXPECT_TRUE(comesTrue([&] { return rescan() == 0 && !found.take().empty(); }));
        std::vector<Outcome> begun{inquire()};
        backend->discoverOnce(begun.emplace_back().completion(), 3);
        backend->pair(CMacAddress(std::string(kPhone)), begun.emplace_back().completion());
        EXPECT_TRUE(stack->waitUntil([](const auto& seen) { return seen.count("Pair") != 0; }));
        return begun;
    }

    static void expectDown(std::vector<Outcome>& begun) {
        for (Outcome& outcome : begun)
            EXPECT_EQ(outcome.value(), generic::kNetworkDown);
    }

    /// Everything that a host may have begun, at random.
    void beginAnything(std::minstd_rand& random, const Completion& completion) {
        const CMacAddress phone{std::string(kPhone)};
        for (auto rest = random() % 6; rest != 0; --rest) {
            switch (random() % 6) {
            case 0:
                backend->discoverOnce(completion, 3);
                break;
            case 1:
                backend->pair(phone, completion);
                break;
            case 2:
                ++approvals;
                backend->authRemote(phone, completion);
                break;
            case 3:
                backend->rescanCachedPeers(completion);
                break;
            case 4:
                stack->phoneAsks(kPhone);
                break;
            default:
                clock.advance(kInquiry);
            }
        }
    }

    std::ptrdiff_t approvals = 0;
};

} // namespace

TEST_F(BlueZLifeTest, EndOfBlueZIsARadioThatIsOffUntilItsReturn) {
    startAsked();
    std::vector<Outcome> begun = begin();
    stack->stop();
    expectDown(begun);
    EXPECT_FALSE(backend->isBluetoothOn());
    EXPECT_EQ(rescan(), generic::kNetworkDown);
    requests.take();
    stack->restart();
    EXPECT_TRUE(comesTrue([&] { return backend->isBluetoothOn(); }));
    EXPECT_EQ(rescan(), 0);
    EXPECT_EQ(found.take().size(), 1U);
    EXPECT_TRUE(stack->waitUntil([](const auto& seen) { return seen.agents.size() == 1; }));
    stack->phoneAsks(kPhone);
    EXPECT_EQ(requests.await(1).size(), 1U);
    EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), 0);
}

TEST_F(BlueZLifeTest, BlueZThatComesLaterIsFound) {
    stack->stop();
    CapturedLog log(kLogInfo);
    startAsked();
    EXPECT_EQ(log.missing({"there is no Bluetooth here: BlueZ can't be used"}), Texts{});
    EXPECT_EQ(rescan(), generic::kNetworkDown);
    stack->restart();
    EXPECT_TRUE(comesTrue([&] { return backend->isBluetoothOn(); }));
    EXPECT_TRUE(stack->waitUntil([](const auto& seen) { return seen.agents.size() == 1; }));
}

TEST_F(BlueZLifeTest, EndOfTheBusIsARadioThatIsOffForGood) {
    startAsked();
    std::vector<Outcome> begun = begin();
    stack->phoneAsks(kPhone);
    bus.stop();
    expectDown(begun);
    EXPECT_TRUE(comesTrue([&] { return !backend->isBluetoothOn(); }));
    EXPECT_EQ(rescan(), generic::kNetworkDown);
    EXPECT_EQ(backend->enableDiscoverable().value(), generic::kNetworkDown);
    clock.advance(std::chrono::minutes(1));
    backend->stop();
    EXPECT_EQ(backend->start(true).value(), 0);
    EXPECT_EQ(rescan(), generic::kNetworkDown);
}

TEST_F(BlueZLifeTest, MachineWithoutDBusIsOneWithoutARadio) {
    backend.emplace("unix:path=/nowhere/bus", clock);
    CapturedLog log(kLogInfo);
    startAsked();
    EXPECT_EQ(rescan(), generic::kNetworkDown);
    EXPECT_EQ(backend->enableDiscoverable().value(), generic::kNetworkDown);
    EXPECT_FALSE(backend->isBluetoothOn());
    EXPECT_EQ(log.told().size(), 1U);
}

TEST_F(BlueZLifeTest, NothingComesOnceItIsStoppedWhateverHasBegun) {
    std::minstd_rand random(1);
    std::atomic<int> afterStop = 0;
    stack->addDevice(knownPhone());
    for (int i = 0; i < 60; ++i) {
        startAsked();
        const auto stopped = std::make_shared<std::atomic<bool>>(false);
        beginAnything(random, [stopped, &afterStop](const error_code&) { afterStop += *stopped; });
        if (i % 2 == 0)
            backend->stop();
        else
            make();
        *stopped = true;
    }
    EXPECT_EQ(afterStop, 0);
    const auto consents = std::ranges::count_if(stack->seen().events, [](const auto& event) {
        return event.what == "answered" && event.detail.empty();
    });
    EXPECT_LE(consents, approvals);
}

TEST_F(BlueZLifeTest, BackendMayGoInItsOwnCompletionAndInItsOwnSignal) {
    stack->addDevice(knownPhone());
    start();
    std::promise<void> inCompletion;
    backend->rescanCachedPeers([&](const error_code&) {
        backend.reset();
        inCompletion.set_value();
    });
    inCompletion.get_future().get();
    make();
    std::promise<void> inSignal;
    backend->onPeerFound.connect([&](const auto&, const auto&, auto) {
        backend.reset();
        inSignal.set_value();
    });
    start();
    bool completed = false;
    backend->rescanCachedPeers([&completed](const error_code&) { completed = true; });
    inSignal.get_future().get();
    make();
    start();
    EXPECT_EQ(rescan(), 0);
    EXPECT_FALSE(completed);
}

TEST_F(BlueZLifeTest, StartsAndStopsLeaveNoThreadAndNoDescriptor) {
    const auto cycle = [this] {
        startAsked();
        Outcome unfinished;
        backend->discoverOnce(unfinished.completion(), 3);
        backend->stop();
    };
    const auto growsNot = [&cycle] {
        cycle();
        const auto threads = entriesOf("/proc/self/task");
        const auto descriptors = entriesOf("/proc/self/fd");
        for (int i = 0; i < 200; ++i)
            cycle();
        EXPECT_LE(entriesOf("/proc/self/task"), threads) << "an earlier thread may still end";
        EXPECT_LE(entriesOf("/proc/self/fd"), descriptors);
    };
    growsNot();
    bus.stop();
    growsNot();
}

} // namespace orbelantine::test
