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

const FakeSide kNone{{}, {}};
const FakeSide kSome{{{L"Card"}}, FakeEndpoint{L"Card"}};
const FakeSide kBluetooth{{{L"Headset", L"BTHENUM"}}, FakeEndpoint{L"Headset", L"BTHENUM"}};

/// The state on a machine with sound, and what it tells.
struct Devices {
    Devices() {
        for (const bool out : {false, true})
            audio.set(out, kSome);
    }

    void start() {
        state->onMute.connect([this](bool out, bool mute) {
            journal.note((out ? "out mute " : "in mute ") + std::to_string(mute));
        });
        state->onBtHeadsetPluggedIn.connect(
            [this](bool in) { journal.note("headset " + std::to_string(in)); });
        state->onStateChanged.connect(
            [this](AudioState now) { journal.note("state " + std::to_string(now)); });
        state->start([this](const error_code&) { journal.note("completed"); });
    }

    FakeAudio audio;
    FakeHeadsetSetting settings;
    Journal journal;
    std::unique_ptr<AudioDevicesState> state = std::make_unique<AudioDevicesState>(audio, settings);
};

TEST(AudioDevicesState, StartTellsOfEachDirectionAndOnceMoreAtItsEnd) {
    Devices d;
    EXPECT_EQ(d.state->getAudioState(), AudioAvailable);
    d.start();
    d.journal.await("state 0", 2);
    EXPECT_EQ(d.journal.take(), (Names{"in mute 1", "headset 0", "state 1", "out mute 1",
                                       "headset 0", "state 0", "state 0"}));
    d.audio.set(false, kNone);
    d.audio.simulateDevices([](auto& listener) { listener.onDeviceRemoved(L"Card"); });
    d.journal.await("state 2");
    EXPECT_EQ(d.journal.take(), (Names{"headset 0", "state 0", "headset 0", "state 2"}));
    EXPECT_EQ(d.state->getAudioState(), NoAudioIn);

    d.audio.set(true, kNone);
    d.state->stop();
    EXPECT_EQ(d.audio.awaitAllGivenBack(), Texts());
    d.state->start({});
    d.journal.await("state 3", 3);
    EXPECT_EQ(d.journal.take(), (Names{"headset 0", "state 3", "headset 0", "state 3", "state 3"}));
}

TEST(AudioDevicesState, FailedStartIsLoggedAndLeavesTheState) {
    CapturedLog log(kLogError);
    Devices d;
    d.audio.set(false, kNone);
    d.audio.fail("RegisterEndpointNotificationCallback");
    d.start();
    d.journal.await("state 2", 2);
    EXPECT_EQ(d.journal.take(),
              (Names{"headset 0", "state 3", "out mute 1", "headset 0", "state 2", "state 2"}));
    d.state->stop();
    d.audio.fail("CoInitialize");
    d.state->start({});
    d.journal.await("state 2");
    EXPECT_EQ(log.missing({"AudioDevicesState::start() Mixer start error 20245",
                           "Mixer start error 20243"}),
              Texts());
}

TEST(AudioDevicesState, SilenceIsToldAtEachChangeAndSoundIsNot) {
    Devices d;
    d.start();
    d.journal.await("state 0", 2);
    d.journal.take();
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
    d.audio.set(false, kBluetooth);
    d.start();
    d.journal.await("state 0", 2);
    EXPECT_TRUE(d.state->isBtHeadsetPluggedIn());
    const auto toldOf = [&](const FakeSide& out, const FakeSide& in) {
        d.journal.take();
        d.audio.set(true, out);
        d.audio.set(false, in);
        d.audio.simulateDevices([](auto& listener) { listener.onDeviceStateChanged(L"id", 1); });
        d.journal.await("state 0", 2);
        Names told = d.journal.take();
        std::erase_if(told, [](const auto& note) { return !note.starts_with("headset"); });
        return told;
    };
    EXPECT_EQ(toldOf(kBluetooth, kSome), (Names{"headset 1", "headset 1"}));
    EXPECT_EQ(toldOf(kSome, kSome), (Names{"headset 0", "headset 0"}));
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
        if (!inNotification)
            d.state->onStateChanged.connect([&](AudioState) { endInSlot(); });
        d.start();
        if (inNotification) {
            d.journal.await("state 0", 2);
            d.state->onMute.connect([&](bool, bool) { endInSlot(); });
            d.audio.simulateVolume(true, 0, false);
        }
        d.journal.await("ended");
        EXPECT_EQ(d.audio.awaitAllGivenBack(), Texts());
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
        d.start();
        d.journal.await("out mute 1", 2);
        if (round % 2 == 0)
            d.state->stop();
        d.state = std::make_unique<AudioDevicesState>(d.audio, d.settings);
        d.journal.take();
    }
    over = true;
    volumes.wait();
    devices.wait();
    EXPECT_EQ(d.audio.awaitAllGivenBack(), Texts());
}

} // namespace
} // namespace orbelantine::test
