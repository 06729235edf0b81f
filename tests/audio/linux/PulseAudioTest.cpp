#include "audio/AudioDeviceCallback.h"
#include "audio/AudioMixer.h"
#include "audio/AudioVolumeCallback.h"
#include "audio/linux/PulseAudioApi.h"
#include "tests/audio/linux/PrivatePulse.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {
namespace {

constexpr std::chrono::seconds kComesWithin(20);
constexpr auto kOut = AudioFlow::Render;
constexpr auto kIn = AudioFlow::Capture;

using WideTexts = std::vector<std::wstring>;
using VolumeCallbackPtr = boost::shared_ptr<AudioVolumeCallback>;

/// A sound server with a USB sink "box", and a look at it.
class PulseAudio : public testing::Test {
  protected:
    void SetUp() override {
        if (!mServer.runs())
            GTEST_SKIP() << "no sound server can be started here";
        loadBox();
        ASSERT_EQ(AudioApi::system().createEnumerator(mEnumerator), hresult::kOk);
        mDevices->onOutDevice.connect([this] { hear(); });
        mDevices->onInDevice.connect([this] { hear(); });
        ASSERT_EQ(mEnumerator->registerEndpointNotificationCallback(mDevices), hresult::kOk);
    }

    void loadBox() {
        mServer.tell("load-module module-null-sink sink_name=box sink_properties='"
                     "device.description=\"L\xC3\xB6ud Box\" device.product.name=Two"
                     " device.bus=usb'");
    }

    void hear() {
        const std::lock_guard lock(mMutex);
        mHeard.notify_all();
    }

    /// Whether it holds, now or after one of the notifications to come.
    bool becomes(const std::function<bool()>& holds) {
        std::unique_lock lock(mMutex);
        return mHeard.wait_for(lock, kComesWithin, holds);
    }

    /// Id, name, details and enumerator of each.
    [[nodiscard]] WideTexts listed(AudioFlow flow) const {
        WideTexts texts;
        std::unique_ptr<AudioDeviceCollection> devices;
        std::uint32_t count = 0;
        EXPECT_EQ(mEnumerator->enumAudioEndpoints(flow, kAudioDeviceActive, devices), 0);
        EXPECT_EQ(devices->getCount(count), 0);
        for (std::uint32_t i = 0; i < count; ++i) {
            std::unique_ptr<AudioDevice> device;
            std::unique_ptr<AudioPropertyStore> properties;
            std::wstring text;
            if (devices->item(i, device) != 0 || device->openPropertyStore(properties) != 0)
                continue;
            EXPECT_EQ(device->getId(texts.emplace_back()), 0);
            for (const auto property :
                 {AudioProperty::Name, AudioProperty::Details, AudioProperty::EnumeratorName}) {
                EXPECT_EQ(properties->getValue(property, text), 0);
                texts.back() += L"|" + text;
            }
        }
        return texts;
    }

    [[nodiscard]] std::wstring defaultId(AudioFlow flow) const {
        std::unique_ptr<AudioDevice> device;
        std::wstring id;
        const auto found = mEnumerator->getDefaultAudioEndpoint(flow, AudioRole::Console, device);
        if (found != hresult::kOk)
            return found == hresult::kNotFound ? L"none" : L"failed";
        EXPECT_EQ(device->getId(id), hresult::kOk);
        return id;
    }

    [[nodiscard]] std::unique_ptr<AudioControl> openBox() const {
        std::unique_ptr<AudioDevice> device;
        std::unique_ptr<AudioControl> control;
        EXPECT_EQ(mEnumerator->getDefaultAudioEndpoint(kOut, AudioRole::Console, device), 0);
        EXPECT_EQ(device->activate(control), hresult::kOk);
        return control;
    }

    VolumeCallbackPtr listener(AudioControl& control, const std::function<void()>& heard = {}) {
        auto callback = boost::make_shared<AudioVolumeCallback>();
        callback->onNotified.connect([this, heard](const AudioVolumeNotification*) {
            if (heard)
                heard();
            hear();
        });
        EXPECT_EQ(control.registerControlChangeNotify(callback), hresult::kOk);
        return callback;
    }

    bool becomes(AudioControl& control, float level, bool mute) {
        return becomes([&] {
            float nowAt = -1;
            bool nowMute = false;
            return control.getMasterVolumeLevelScalar(nowAt) == 0 &&
                   std::abs(nowAt - level) < 0.001F && control.getMute(nowMute) == 0 &&
                   nowMute == mute;
        });
    }

    PrivatePulse mServer;
    std::mutex mMutex;
    std::condition_variable mHeard;
    boost::shared_ptr<AudioDeviceCallback> mDevices =
        boost::make_shared<AudioDeviceCallback>(AudioRole::Console);
    std::unique_ptr<AudioDeviceEnumerator> mEnumerator;
};

TEST_F(PulseAudio, DevicesAreListedAndToldOfAsTheyComeChangeAndGo) {
    EXPECT_EQ(listed(kOut), WideTexts{L"box|L\u00F6ud Box|Two|USB"});
    EXPECT_EQ(listed(kIn), WideTexts{});
    EXPECT_EQ(defaultId(kIn), L"none");

    CapturedLog log(kLogDebug);
    mServer.tell("load-module module-null-sink sink_name=second");
    EXPECT_TRUE(becomes([&] { return listed(kOut).size() == 2; }));
    mServer.tell("load-module module-remap-source master=box.monitor source_name=mic");
    mServer.tell("set-default-source mic");
    EXPECT_TRUE(becomes([&] { return listed(kIn).size() == 1 && defaultId(kIn) == L"mic"; }));
    mServer.tell("set-default-sink second");
    EXPECT_TRUE(becomes([&] { return defaultId(kOut) == L"second"; }));
    EXPECT_EQ(listed(kOut).back(), L"second|Null Output|second|ROOT");
    mServer.tell("update-sink-proplist second device.bus=bluetooth device.description=Head");
    EXPECT_TRUE(becomes([&] { return listed(kOut).back() == L"second|Head|second|BTHENUM"; }));
    mServer.tell("unload-module module-remap-source");
    EXPECT_TRUE(becomes([&] { return listed(kIn).empty(); }));
    mEnumerator.reset();
    EXPECT_EQ(log.missing({"Device mic added", "Default playback device is now second",
                           "Default recording device is now mic", "Device second removed",
                           "Device mic removed"}),
              Texts{});
}

TEST_F(PulseAudio, VolumeAndMuteAreSetForAllChannelsAndFollowOthers) {
    const auto control = openBox();
    const auto callback = listener(*control);
    ASSERT_EQ(std::system("pactl set-sink-volume box 30% 60%"), 0);
    EXPECT_TRUE(becomes(*control, 0.6F, false));
    EXPECT_EQ(control->setMasterVolumeLevelScalar(0.5F), hresult::kOk);
    EXPECT_EQ(control->setMute(true), hresult::kOk);
    EXPECT_TRUE(becomes(*control, 0.5F, true));
    EXPECT_PRED_FORMAT2(testing::IsSubstring, "/  25% /", mServer.tell("list-sinks"));
    mServer.tell("set-sink-volume box 98304");
    mServer.tell("set-sink-mute box 0");
    EXPECT_TRUE(becomes(*control, 1, false)) << "louder than full is full";
    for (const float wrong : {-0.1F, 1.1F, std::nanf("")})
        EXPECT_EQ(control->setMasterVolumeLevelScalar(wrong), hresult::kInvalidArgument);
}

TEST_F(PulseAudio, ServerMayDieAndComeBack) {
    CapturedLog log(kLogWarning);
    auto control = openBox();
    const auto callback = listener(*control);
    mServer.stop();
    ASSERT_TRUE(becomes([&] { return defaultId(kOut) == L"none"; }));
    EXPECT_EQ(control->setMute(true), hresult::kDeviceInvalidated);
    mServer.start();
    loadBox();
    ASSERT_TRUE(becomes([&] { return defaultId(kOut) == L"box"; }));
    EXPECT_EQ(control->setMute(true), hresult::kOk);
    EXPECT_TRUE(becomes(*control, 1, true));
    control.reset();
    mEnumerator.reset();
    EXPECT_EQ(log.told().size(), 1U) << "a loss is told once";
}

TEST_F(PulseAudio, WithoutServerOrLibraryThereAreNoDevices) {
    mEnumerator.reset();
    mServer.stop();
    ASSERT_EQ(AudioApi::system().createEnumerator(mEnumerator), hresult::kOk);
    EXPECT_EQ(defaultId(kOut), L"none");
    PulseAudioApi without("libabsent.so.0");
    ASSERT_EQ(without.createEnumerator(mEnumerator), hresult::kOk);
    EXPECT_EQ(defaultId(kOut), L"none");
    EXPECT_EQ(listed(kOut), WideTexts{});
}

TEST_F(PulseAudio, ServerThatHangsHoldsNothingUp) {
    const auto begun = std::chrono::steady_clock::now();
    auto control = openBox();
    mServer.freeze();
    for (int i = 0; i < 10000; ++i)
        ASSERT_EQ(control->setMasterVolumeLevelScalar(static_cast<float>(i % 2)), hresult::kOk);
    EXPECT_EQ(defaultId(kOut), L"box");
    control.reset();
    mEnumerator.reset();
    ASSERT_EQ(AudioApi::system().createEnumerator(mEnumerator), hresult::kOk);
    EXPECT_EQ(defaultId(kOut), L"none");
    EXPECT_EQ(mEnumerator->registerEndpointNotificationCallback(mDevices), hresult::kOk);
    mServer.thaw();
    EXPECT_TRUE(becomes([&] { return defaultId(kOut) == L"box"; }));
    EXPECT_LT(std::chrono::steady_clock::now() - begun, kComesWithin);
}

TEST_F(PulseAudio, SlowListenerHearsTheEndOfAFloodAndHoldsNothingUp) {
    const auto control = openBox();
    std::promise<void> entered;
    std::promise<void> left;
    std::atomic<int> heard = 0;
    const auto slow = listener(*control, [&] {
        if (heard++ == 0) {
            entered.set_value();
            left.get_future().wait();
        }
    });
    mServer.tell("set-sink-volume box 1");
    entered.get_future().wait();
    for (int i = 10000; i > 0; --i)
        mServer.tell("set-sink-volume box " + std::to_string(i));
    mServer.tell("load-module module-null-sink sink_name=second");
    EXPECT_TRUE(becomes([&] { return listed(kOut).size() == 2; }));
    EXPECT_EQ(control->setMasterVolumeLevelScalar(0.25F), hresult::kOk);
    left.set_value();
    EXPECT_TRUE(becomes(*control, 0.25F, false));
    EXPECT_TRUE(becomes([&] { return heard > 1; }));
    EXPECT_LE(heard, 4);
}

TEST_F(PulseAudio, UnregisteredCallbackIsLeftAlone) {
    const auto control = openBox();
    std::atomic<int> heard = 0;
    std::atomic<int> reliable = 0;
    const auto kept = listener(*control, [&] { ++reliable; });
    // Both share one notifier: what it had begun before is over when the other hears.
    const auto change = [&](int volume) {
        const int before = reliable;
        mServer.tell("set-sink-volume box " + std::to_string(volume));
        return [this, &reliable, before] { return becomes([&] { return reliable > before; }); };
    };
    for (int volume = 1; volume < 200; ++volume) {
        const auto callback = listener(*control, [&] { ++heard; });
        const auto comes = change(volume);
        EXPECT_EQ(control->unregisterControlChangeNotify(callback), hresult::kOk);
        EXPECT_TRUE(comes());
    }
    const int before = heard;
    EXPECT_TRUE(change(5000)());
    EXPECT_TRUE(change(6000)());
    EXPECT_EQ(heard, before);
}

TEST_F(PulseAudio, EverythingMayEndInACallback) {
    auto control = openBox();
    std::promise<void> ended;
    const auto callback = listener(*control, [&] {
        control.reset();
        mEnumerator.reset();
        ended.set_value();
    });
    mServer.tell("set-sink-volume box 1");
    EXPECT_EQ(ended.get_future().wait_for(kComesWithin), std::future_status::ready);

    ASSERT_EQ(AudioApi::system().createEnumerator(mEnumerator), hresult::kOk);
    std::promise<void> gone;
    mDevices->onInDevice.connect([&] {
        if (std::exchange(mEnumerator, nullptr))
            gone.set_value();
    });
    EXPECT_EQ(mEnumerator->registerEndpointNotificationCallback(mDevices), hresult::kOk);
    mServer.tell("load-module module-null-sink sink_name=second");
    EXPECT_EQ(gone.get_future().wait_for(kComesWithin), std::future_status::ready);
}

TEST_F(PulseAudio, MixerTakesTheDeviceThatCountsAndSetsIt) {
    mServer.tell(
        "load-module module-null-sink sink_name=head sink_properties=device.bus=bluetooth");
    mServer.tell("set-default-sink box");
    ASSERT_TRUE(becomes([&] { return listed(kOut).size() == 2 && defaultId(kOut) == L"box"; }));
    for (const bool btSearch : {false, true}) {
        AudioMixer mixer(AudioRole::Console, btSearch);
        std::promise<int> started;
        std::promise<int> volume;
        mixer.start(15, [&](const error_code& ec) { started.set_value(ec.value()); });
        EXPECT_EQ(started.get_future().get(), 20240) << "no recording device";
        EXPECT_EQ(mixer.getDefaultAudioDeviceId(true), btSearch ? L"head" : L"box");
        mixer.onVolumeChanged.connect([&](bool, int told) { volume.set_value(told); });
        mixer.setVolume(true, 8);
        EXPECT_EQ(volume.get_future().get(), 8);
        mixer.stop();
    }
}

} // namespace
} // namespace orbelantine::test
