#include "audio/AudioDevicesState.h"

#include "core/common/errors/Exception.h"
#include "tests/audio/FakeAudio.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/Journal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>

namespace orbelantine::test {
namespace {

/// The state on a machine with sound, and what it tells.
struct Devices {
    Devices() { audio.sides.fill({{kCard}, {kCard}}); }

    /// Until `told` has come so often, twice at the end of a start that finds a device for out.
    Names start(const std::string& told = "state 0", int times = 2) {
        state->onMute.connect([this](bool out, bool mute) {
            journal.note((out ? "out mute " : "in mute ") + std::to_string(mute));
        });
        state->onBtHeadsetPluggedIn.connect(
            [this](bool in) { journal.note("headset " + std::to_string(in)); });
        state->onStateChanged.connect(
            [this](AudioState now) { journal.note("state " + std::to_string(now)); });
        state->start([this](const error_code&) { journal.note("completed"); });
        return await(told, times);
    }

    Names await(const std::string& told, int times) {
        journal.await(told, times);
        return journal.take();
    }

    FakeAudio audio;
    Journal journal;
    std::unique_ptr<AudioDevicesState> state = std::make_unique<AudioDevicesState>(audio, audio);
};

TEST(AudioDevicesState, StartTellsOfEachDirectionAndOnceMoreAtItsEnd) {
    Devices d;
    EXPECT_EQ(d.state->getAudioState(), AudioAvailable);
    EXPECT_EQ(d.start(), (Names{"in mute 1", "headset 0", "state 1", "out mute 1", "headset 0",
                                "state 0", "state 0"}));
    d.audio.sides[false] = {};
    d.audio.simulateDevices([](auto& listener) { listener.onDeviceRemoved(L"Card"); });
    EXPECT_EQ(d.await("state 2", 1), (Names{"headset 0", "state 0", "headset 0", "state 2"}));
    EXPECT_EQ(d.state->getAudioState(), NoAudioIn);
    d.audio.sides[true] = {};
    d.state->stop();
    EXPECT_EQ(d.audio.awaitAllGivenBack(), Names());
    d.state->start({});
    EXPECT_EQ(d.await("state 3", 3),
              (Names{"headset 0", "state 3", "headset 0", "state 3", "state 3"}));
}

TEST(AudioDevicesState, FailedStartIsLoggedAndLeavesTheState) {
    CapturedLog log(kLogError);
    Devices d;
    d.audio.sides[false] = {};
    d.audio.failing = "RegisterEndpointNotificationCallback";
    EXPECT_EQ(d.start("state 2"),
              (Names{"headset 0", "state 3", "out mute 1", "headset 0", "state 2", "state 2"}));
    d.state->stop();
    d.audio.failing = "CoInitialize";
    d.state->start({});
    EXPECT_EQ(d.await("state 2", 1), Names{"state 2"});
    EXPECT_EQ(log.missing({"start() Mixer start error 20245", "Mixer start error 20243"}), Names());
}

TEST(AudioDevicesState, SilenceIsToldAtEachChangeAndSoundIsNot) {
    Devices d;
    d.start();
    const auto toldOf = [&](float level, bool mute) {
        d.audio.simulateVolume(true, level, mute);
        return d.journal.take();
    };
    const Names once{"out mute 1"};
    EXPECT_EQ(toldOf(0, false), once);
    EXPECT_EQ(toldOf(0, false), once);
    EXPECT_EQ(toldOf(0.5F, false), Names());
    EXPECT_EQ(toldOf(0.5F, true), once);
    EXPECT_EQ(toldOf(0.6F, true), once);
    EXPECT_EQ(toldOf(0, false), (Names{"out mute 1", "out mute 1"}));
    EXPECT_EQ(toldOf(0.5F, false), Names());
}

TEST(AudioDevicesState, HeadsetIsThereWhileADirectionHasOne) {
    Devices d;
    d.audio.sides[false] = {{kHeadset}, {kHeadset}};
    EXPECT_EQ(d.start()[1], "headset 1");
    EXPECT_TRUE(d.state->isBtHeadsetPluggedIn());
    const auto toldOnChange = [&](const FakeEndpoint& out) {
        d.audio.sides = {FakeSide{{kCard}, {kCard}}, FakeSide{{out}, {out}}};
        d.audio.simulateDevices([](auto& listener) { listener.onDeviceStateChanged(L"", 1); });
        return d.await("state 0", 2);
    };
    EXPECT_EQ(toldOnChange(kHeadset), (Names{"headset 1", "state 0", "headset 1", "state 0"}));
    EXPECT_EQ(toldOnChange(kCard), (Names{"headset 0", "state 0", "headset 0", "state 0"}));
    EXPECT_FALSE(d.state->isBtHeadsetPluggedIn());
}

TEST(AudioDevicesState, CannotBeStoppedInASlotButMayEndThere) {
    for (const bool inNotification : {false, true}) {
        Devices d;
        const auto endInSlot = [&] {
            if (!d.state)
                return;
            EXPECT_THROW(d.state->stop(), Exception);
            d.state.reset();
            d.journal.note("ended");
        };
        if (inNotification) {
            d.start();
            d.state->onMute.connect([&](bool, bool) { endInSlot(); });
            d.audio.simulateVolume(true, 0, false);
        } else {
            d.state->onStateChanged.connect([&](AudioState) { endInSlot(); });
            d.state->start({});
        }
        d.journal.await("ended");
        EXPECT_EQ(d.audio.awaitAllGivenBack(), Names());
    }
}

TEST(AudioDevicesState, StandsNotificationsThroughStopAndEnd) {
    Devices d;
    std::atomic<bool> over = false;
    const auto repeat = [&](auto simulate) {
        return std::async(std::launch::async, [&over, simulate] {
            while (!over) {
                simulate();
                std::this_thread::yield();
            }
        });
    };
    const auto volumes = repeat([&] { d.audio.simulateVolume(true, 0, true); });
    const auto devices = repeat(
        [&] { d.audio.simulateDevices([](auto& listener) { listener.onDeviceAdded(L"id"); }); });
    for (int round = 0; round < 20; ++round) {
        d.start("out mute 1");
        if (round % 2 == 0)
            d.state->stop();
        d.state = std::make_unique<AudioDevicesState>(d.audio, d.audio);
    }
    over = true;
    volumes.wait();
    devices.wait();
    EXPECT_EQ(d.audio.awaitAllGivenBack(), Names());
}

} // namespace
} // namespace orbelantine::test
