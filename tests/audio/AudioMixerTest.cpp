#include "audio/AudioMixer.h"

#include "tests/audio/FakeAudio.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/Journal.h"

#include <gtest/gtest.h>

#include <future>
#include <sstream>

namespace orbelantine::test {
namespace {

const FakeEndpoint kMonitor{L"Monitor"};
const FakeEndpoint kOff{L"Off", L"HDAUDIO", kAudioDeviceDisabled};
const FakeEndpoint kUsb{L"Dock", L"usb"};
const FakeEndpoint kHandsFree{L"HandsFree", L"BTHHFENUM", kAudioDeviceDisabled};
const FakeEndpoint kAway{L"Away", L"BTHENUM", kAudioDeviceUnplugged};

/// A mixer on a machine with a card, and what it tells.
struct Mixer {
    explicit Mixer(bool btSearch = true)
        : mixer(AudioRole::Console, btSearch, audio, audio) {
        audio.sides.fill({{kCard}, {kCard}});
    }

    int start() {
        mixer.onVolumeChanged.connect(
            [this](bool out, int volume) { note(out, "volume", volume); });
        mixer.onMuteChanged.connect([this](bool out, bool mute) { note(out, "mute", mute); });
        mixer.onAudioDeviceInfo.connect([this](const auto& name, const auto& enumerator,
                                               const auto& details, bool out, auto type) {
            const auto text = name + L"|" + enumerator + L"|" + details;
            note(out, type, std::string(text.begin(), text.end()));
        });
        mixer.onAudioDeviceChanged.connect([this](const error_code& ec, bool out, bool headset) {
            note(out, ec.value(), headset ? "headset" : "no headset");
        });
        const auto started = std::make_shared<std::promise<int>>();
        mixer.start(15, [started](const error_code& ec) { started->set_value(ec.value()); });
        return started->get_future().get();
    }

    template <class What, class Value>
    void note(bool out, const What& what, const Value& value) {
        std::ostringstream text;
        text << (out ? "out " : "in ") << what << ' ' << value;
        journal.note(text.str());
    }

    /// Once the worker has done what it was asked.
    Names told() {
        (void)mixer.getDefaultAudioDeviceId(true);
        return journal.take();
    }

    FakeAudio audio;
    Journal journal;
    AudioMixer mixer;
};

struct Machine {
    bool btSearch;
    std::optional<std::uint32_t> configuration;
    FakeSide side;
    std::wstring taken;
    bool headset;
    Names infos;
};

const std::string kCardInfo = "0 Card|HDAUDIO|details";
const std::string kHeadsetInfo = "0 Headset|bthenum|details";

const Machine kMachines[] = {
    {true, 0, {}, L"", false, {"0 |No device|"}},
    {true, 0, {{kCard, kMonitor, kOff}, {kCard}}, L"Off", false, {kCardInfo}},
    {true, 0, {{}, {kCard}}, L"Card", false, {kCardInfo}},
    {true, 0, {{kAway, kMonitor}, {kCard}}, L"Monitor", false, {kCardInfo}},
    {true, {}, {{kCard, kHandsFree, kHeadset}, {kCard}}, L"HandsFree", true, {kCardInfo}},
    {true, 1, {{kHeadset, kCard}, {kCard}}, L"Headset", false, {kCardInfo}},
    {false, 0, {{kHeadset, kCard}, {kCard}}, L"Card", false, {kCardInfo, "1 ||"}},
    {false, 7, {{kCard, kHeadset}, {kHeadset}}, L"Headset", true, {kHeadsetInfo}},
    {false, 2, {{kCard, kHeadset}, {kHeadset}}, L"Headset", false, {kHeadsetInfo}},
    {false,
     1,
     {{kHeadset, kMonitor, kUsb}, {kHeadset}},
     L"Dock",
     false,
     {kHeadsetInfo, "1 Dock|usb|details"}},
    {false,
     1,
     {{kOff, kHeadset, kMonitor, kCard}, {kHeadset}},
     L"Monitor",
     false,
     {kHeadsetInfo, "1 Monitor|HDAUDIO|details"}},
    {false, 1, {{kOff, kHeadset}, {kHeadset}}, L"", false, {kHeadsetInfo, "1 |No device|"}},
    {false, 1, {{kHeadset, kUsb}, {kCard}}, L"Card", false, {kCardInfo, "1 ||"}},
};

TEST(AudioMixer, TakesTheDeviceThatTheSearchAsksFor) {
    for (const Machine& machine : kMachines)
        for (const bool out : {false, true}) {
            SCOPED_TRACE(testing::Message() << "machine " << &machine - kMachines << ' ' << out);
            Mixer m(machine.btSearch);
            m.audio.headsetConfiguration = machine.configuration;
            m.audio.sides[out] = machine.side;
            const bool missing = machine.taken.empty();
            EXPECT_EQ(m.start(), !missing ? 0 : out ? 20241 : 20240);
            EXPECT_EQ(m.mixer.getDefaultAudioDeviceId(out), machine.taken);
            Names expected = machine.infos;
            if (!missing)
                expected.insert(expected.end(), {"volume 8", "mute 0"});
            // In is looked up first, when out has no device yet.
            const int code = out ? (missing ? 20241 : 0) : (missing ? 20242 : 20241);
            expected.push_back(std::to_string(code) +
                               (machine.headset ? " headset" : " no headset"));
            Names told;
            const std::string side = out ? "out " : "in ";
            for (const std::string& note : m.journal.take())
                if (note.starts_with(side))
                    told.push_back(note.substr(side.size()));
            EXPECT_EQ(told, expected);
        }
}

TEST(AudioMixer, FailedCallIsLoggedAndLeavesNothingBehind) {
    const std::tuple<const char*, int, Names> failures[] = {
        {"CoInitialize", 20243, {"doStart() CoInitialize failed. Error ="}},
        {"CoCreateInstance", 20244, {"Failed to create device enumerator. Error ="}},
        {"RegisterEndpointNotificationCallback",
         20245,
         {"Cannot monitor audio devices!!! Error ="}},
        {"GetDefaultAudioEndpoint", 20242, {"No default audio device for out. Error ="}},
        {"EnumAudioEndpoints", 0, {"doFindBtDevice() Unable to enumerate audio devices for in."}},
        {"GetCount", 0, {"Unable to get devices count for out. Error ="}},
        {"Item", 20242, {"Unable to get device 0/1 for in. Error =", "No in device"}},
        {"GetState", 0, {"Unable to get out audio device state. Error ="}},
        {"OpenPropertyStore", 0, {"getDeviceName() Unable to open property store. Error:"}},
        {"GetValue", 0, {"Unable to get device name. Error:", "device details. Error:"}},
        {"Activate",
         20242,
         {"Activate failed for out device. Error =", "Failed to open out device"}},
        {"RegisterControlChangeNotify", 20242, {"RegisterControlChangeNotify failed for in"}},
        {"GetMasterVolumeLevelScalar", 20242, {"doOpenVolumeDevice() GetMasterVolumeLevelScalar"}},
        {"GetMute", 20242, {"GetMute failed for in device. Error ="}},
    };
    for (const auto& [call, code, lines] : failures) {
        SCOPED_TRACE(call);
        CapturedLog log(kLogError);
        Mixer m;
        m.audio.sides.fill({{kHeadset}, {kHeadset}});
        m.audio.failing = call;
        EXPECT_EQ(m.start(), code);
        Names expected = lines;
        expected.push_back(" 0x88890004");
        EXPECT_EQ(log.missing(expected), Names());
        m.mixer.stop();
        EXPECT_EQ(m.audio.awaitAllGivenBack(), Names());
    }
}

TEST(AudioMixer, FollowsTheSystemFromStartToStop) {
    Mixer m;
    m.audio.sides.fill({});
    EXPECT_EQ(m.start(), 20242);
    m.told();
    m.audio.sides = {FakeSide{{kCard}, {kCard}, 0.1F, true}, FakeSide{{kCard}, {kCard}}};
    m.audio.simulateDevices([](auto& listener) { listener.onDeviceAdded(L"Card"); });
    EXPECT_EQ(m.told(),
              (Names{"out " + kCardInfo, "out volume 8", "out mute 0", "out 20240 no headset",
                     "in " + kCardInfo, "in volume 2", "in mute 1", "in 0 no headset"}));
    EXPECT_TRUE(m.mixer.levels()->in.mute);
    m.audio.sides[false] = {};
    m.audio.simulateDevices([](auto& listener) {
        listener.onDefaultDeviceChanged(AudioFlow::Render, AudioRole::Multimedia, L"Card");
        listener.onDefaultDeviceChanged(AudioFlow::Capture, AudioRole::Console, nullptr);
        listener.onPropertyValueChanged();
    });
    EXPECT_EQ(m.told(), (Names{"in 0 |No device|", "in 20240 no headset"}));
    m.mixer.stop();
    EXPECT_EQ(m.audio.awaitAllGivenBack(), Names());
    EXPECT_EQ(m.start(), 20240);
    EXPECT_EQ(m.told().size(), 6u);
}

TEST(AudioMixer, VolumeAndMuteAreSetWhereTheyDiffer) {
    CapturedLog log(kLogDebug);
    Mixer m;
    m.mixer.setVolume(true, 3);
    EXPECT_EQ(m.start(), 0);
    m.told();
    m.mixer.setVolume(true, 8);
    m.mixer.setMute(false, false);
    m.mixer.setVolume(true, 3);
    m.mixer.setMute(false, true);
    EXPECT_EQ(m.told(), Names());
    EXPECT_EQ(m.audio.sets, (Names{"0.200000", "mute"}));

    m.audio.simulateVolume(true, 0.2F, true);
    m.audio.simulateVolume(true, 0.2F, true);
    EXPECT_EQ(m.told(), (Names{"out volume 3", "out mute 1", "out volume 3"}));
    m.audio.failing = "SetMasterVolumeLevelScalar";
    m.mixer.setVolume(true, 3);
    m.mixer.setVolume(false, 4);
    m.told();
    m.audio.failing = "SetMute";
    m.mixer.setMute(true, false);
    m.told();
    m.mixer.stop();
    EXPECT_EQ(m.mixer.getDefaultAudioDeviceId(true), L"");
    EXPECT_EQ(m.audio.sets.size(), 2u);
    EXPECT_EQ(log.missing({"No volume device out",
                           "Opened device in (and registered). Volume is 8, not mute",
                           "Device in state changed to mute", "Now speakers are mute",
                           "Failed to set volume to 4 for device in. Error = 0x88890004",
                           "Failed to set mute to 0 for device out. Error = 0x88890004",
                           "Failed to get default device out id. Error = 0x80070057"}),
              Names());
}

} // namespace
} // namespace orbelantine::test
