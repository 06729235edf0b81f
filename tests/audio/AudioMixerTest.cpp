#include "audio/AudioMixer.h"

#include "tests/audio/FakeAudio.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/Journal.h"

#include <gtest/gtest.h>

#include <future>
#include <sstream>

namespace orbelantine::test {
namespace {

const FakeEndpoint kSpeakers{L"Speakers"};
const FakeEndpoint kMonitor{L"Monitor"};
const FakeEndpoint kOff{L"Off", L"HDAUDIO", kAudioDeviceDisabled};
const FakeEndpoint kUsb{L"Dock", L"usb"};
const FakeEndpoint kHeadset{L"Headset", L"bthenum"};
const FakeEndpoint kHandsFree{L"HandsFree", L"BTHHFENUM", kAudioDeviceDisabled};
const FakeEndpoint kAway{L"Away", L"BTHENUM", kAudioDeviceUnplugged};

/// A mixer on a machine with speakers and a microphone, and what it tells.
struct Mixer {
    explicit Mixer(bool btSearch = true)
        : mixer(AudioRole::Console, btSearch, audio, settings) {
        for (const bool out : {false, true})
            audio.set(out, {{kSpeakers}, kSpeakers});
    }

    int start() {
        mixer.onVolumeChanged.connect(
            [this](bool out, int volume) { note(out, "volume", volume); });
        mixer.onMuteChanged.connect([this](bool out, bool mute) { note(out, "mute", mute); });
        mixer.onAudioDeviceInfo.connect([this](const auto& name, const auto& enumerator,
                                               const auto& details, bool out, auto type) {
            note(out, "info", type, narrow(name), narrow(enumerator), narrow(details));
        });
        mixer.onAudioDeviceChanged.connect([this](const error_code& ec, bool out, bool headset) {
            note(out, "changed", ec.value(), headset);
        });
        const auto started = std::make_shared<std::promise<error_code>>();
        mixer.start(15, [started](const error_code& ec) { started->set_value(ec); });
        return started->get_future().get().value();
    }

    template <class... Parts>
    void note(bool out, Parts... parts) {
        std::ostringstream text;
        text << (out ? "out" : "in");
        ((text << '|' << parts), ...);
        journal.note(text.str());
    }

    static std::string narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

    /// Once the worker has done what it was asked.
    Names told() {
        (void)mixer.getDefaultAudioDeviceId(true);
        return journal.take();
    }

    FakeAudio audio;
    FakeHeadsetSetting settings;
    Journal journal;
    AudioMixer mixer;
};

enum class Found { Device, Headset, Nothing };

struct Machine {
    bool btSearch;
    std::optional<std::uint32_t> configuration;
    FakeSide side;
    Names infos;
    std::wstring taken;
    Found found = Found::Device;
};

const std::vector<Machine> kMachines{
    {true, 0, {{kSpeakers}, {}}, {"0||No device|"}, L"", Found::Nothing},
    {true, 0, {{kMonitor, kSpeakers, kOff}, kMonitor}, {"0|Monitor|HDAUDIO|details"}, L"Off"},
    {true, 0, {{}, kSpeakers}, {"0|Speakers|HDAUDIO|details"}, L"Speakers"},
    {true, 0, {{kAway, kMonitor}, kMonitor}, {"0|Monitor|HDAUDIO|details"}, L"Monitor"},
    {true,
     {},
     {{kSpeakers, kHandsFree, kHeadset}, kSpeakers},
     {"0|Speakers|HDAUDIO|details"},
     L"HandsFree",
     Found::Headset},
    {true, 1, {{kHeadset, kSpeakers}, kSpeakers}, {"0|Speakers|HDAUDIO|details"}, L"Headset"},
    {false,
     0,
     {{kHeadset, kSpeakers}, kSpeakers},
     {"0|Speakers|HDAUDIO|details", "1|||"},
     L"Speakers"},
    {false,
     7,
     {{kSpeakers, kHeadset}, kHeadset},
     {"0|Headset|bthenum|details"},
     L"Headset",
     Found::Headset},
    {false, 2, {{kSpeakers, kHeadset}, kHeadset}, {"0|Headset|bthenum|details"}, L"Headset"},
    {false,
     1,
     {{kHeadset, kMonitor, kUsb}, kHeadset},
     {"0|Headset|bthenum|details", "1|Dock|usb|details"},
     L"Dock"},
    {false,
     1,
     {{kOff, kHeadset, kSpeakers, kMonitor}, kHeadset},
     {"0|Headset|bthenum|details", "1|Speakers|HDAUDIO|details"},
     L"Speakers"},
    {false,
     1,
     {{kOff, kHeadset}, kHeadset},
     {"0|Headset|bthenum|details", "1||No device|"},
     L"",
     Found::Nothing},
    {false, 1, {{kHeadset, kUsb}, kUsb}, {"0|Dock|usb|details", "1|||"}, L"Dock"},
};

TEST(AudioMixer, TakesTheDeviceThatTheSearchAsksFor) {
    for (std::size_t row = 0; row < kMachines.size(); ++row)
        for (const bool out : {false, true}) {
            SCOPED_TRACE(testing::Message() << "machine " << row << (out ? " out" : " in"));
            const Machine& machine = kMachines[row];
            Mixer m(machine.btSearch);
            m.settings.configuration = machine.configuration;
            m.audio.set(out, machine.side);
            const bool missing = machine.found == Found::Nothing;
            EXPECT_EQ(m.start(), !missing ? 0 : out ? 20241 : 20240);
            EXPECT_EQ(m.mixer.getDefaultAudioDeviceId(out), machine.taken);
            Names expected;
            for (const std::string& info : machine.infos)
                expected.push_back((out ? "out|info|" : "in|info|") + info);
            Names told = m.journal.take();
            std::erase_if(told, [&](const std::string& note) {
                return !note.starts_with(out ? "out|info" : "in|info") &&
                       !note.starts_with(out ? "out|changed" : "in|changed");
            });
            // In is looked up first, when out has no device yet.
            const int code = out ? (missing ? 20241 : 0) : (missing ? 20242 : 20241);
            expected.push_back((out ? "out|changed|" : "in|changed|") + std::to_string(code) +
                               (machine.found == Found::Headset ? "|1" : "|0"));
            EXPECT_EQ(told, expected);
        }
}

struct Failure {
    std::string call;
    int code;
    Texts lines;
};

TEST(AudioMixer, FailedCallIsLoggedAndLeavesNothingBehind) {
    const std::string end = " Error = 0x88890004";
    const std::string property = "Unable to get device ";
    const std::vector<Failure> failures{
        {"CoInitialize", 20243, {"doStart() CoInitialize failed." + end}},
        {"CoCreateInstance", 20244, {"Failed to create device enumerator." + end}},
        {"RegisterEndpointNotificationCallback", 20245, {"Cannot monitor audio devices!!!" + end}},
        {"GetDefaultAudioEndpoint",
         20242,
         {"No default audio device for out." + end, "Unable to find audio in device"}},
        {"EnumAudioEndpoints",
         0,
         {"doFindBtDevice() Unable to enumerate audio devices for in." + end}},
        {"GetCount", 0, {"Unable to get devices count for out." + end}},
        {"Item",
         20242,
         {"Unable to get device 0/1 for in." + end, "No in device", "Failed to open in device"}},
        {"GetState", 0, {"Unable to get out audio device state." + end}},
        {"OpenPropertyStore",
         0,
         {"getDeviceName() Unable to open property store. Error: 0x88890004"}},
        {"GetValue",
         0,
         {property + "name. Error: 0x88890004", property + "details. Error: 0x88890004",
          "getDeviceEnumeratorName() " + property + "enumerator name. Error: 0x88890004"}},
        {"Activate", 20242, {"doOpenVolumeDevice() Activate failed for out device." + end}},
        {"RegisterControlChangeNotify",
         20242,
         {"RegisterControlChangeNotify failed for in device." + end, "Failed to open out device"}},
        {"GetMasterVolumeLevelScalar",
         20242,
         {"GetMasterVolumeLevelScalar failed for out device." + end}},
        {"GetMute", 20242, {"GetMute failed for in device." + end}},
    };
    for (const Failure& failure : failures) {
        SCOPED_TRACE(failure.call);
        CapturedLog log(kLogError);
        Mixer m;
        for (const bool out : {false, true})
            m.audio.set(out, {{kHeadset}, kHeadset});
        m.audio.fail(failure.call);
        EXPECT_EQ(m.start(), failure.code);
        EXPECT_EQ(log.missing(failure.lines), Texts());
        m.mixer.stop();
        EXPECT_EQ(m.audio.awaitAllGivenBack(), Texts());
    }
}

TEST(AudioMixer, FollowsTheSystemFromStartToStop) {
    Mixer m;
    m.audio.set(true, {{}, {}});
    m.audio.set(false, {{}, {}});
    EXPECT_EQ(m.start(), 20242);
    m.told();
    m.audio.set(true, {{kSpeakers}, kSpeakers});
    m.audio.set(false, {{kSpeakers}, kSpeakers, 0.1F, true});
    m.audio.simulateDevices([](auto& listener) { listener.onDeviceAdded(L"Speakers"); });
    const std::string speakers = "|info|0|Speakers|HDAUDIO|details";
    EXPECT_EQ(m.told(),
              (Names{"out" + speakers, "out|volume|8", "out|mute|0", "out|changed|20240|0",
                     "in" + speakers, "in|volume|2", "in|mute|1", "in|changed|0|0"}));
    m.audio.simulateDevices([](auto& listener) {
        listener.onDefaultDeviceChanged(AudioFlow::Render, AudioRole::Multimedia, L"Monitor");
        listener.onDefaultDeviceChanged(AudioFlow::Capture, AudioRole::Communications, nullptr);
        listener.onPropertyValueChanged();
    });
    EXPECT_EQ(m.told(), Names());
    m.audio.set(false, {{}, {}});
    m.audio.simulateDevices([](auto& listener) {
        listener.onDefaultDeviceChanged(AudioFlow::Capture, AudioRole::Console, nullptr);
    });
    EXPECT_EQ(m.told(), (Names{"in|info|0||No device|", "in|changed|20240|0"}));

    m.mixer.stop();
    EXPECT_EQ(m.audio.awaitAllGivenBack(), Texts());
    m.audio.set(true, {{kSpeakers}, kSpeakers, 1});
    EXPECT_EQ(m.start(), 20240);
    EXPECT_EQ(m.told(), (Names{"in|info|0||No device|", "in|changed|20242|0", "out" + speakers,
                               "out|volume|15", "out|mute|0", "out|changed|20240|0"}));
}

TEST(AudioMixer, VolumeAndMuteAreSetWhereTheyDiffer) {
    CapturedLog log(kLogDebug);
    Mixer m;
    m.mixer.setVolume(true, 3);
    EXPECT_EQ(m.start(), 0);
    EXPECT_EQ(log.missing({"No volume device out", "Volume is 8, not mute"}), Texts());
    m.told();
    m.mixer.setVolume(true, 8);
    m.mixer.setMute(false, false);
    m.mixer.setVolume(true, 3);
    m.mixer.setMute(false, true);
    EXPECT_EQ(m.told(), Names());
    EXPECT_EQ(m.audio.sets(), (Texts{"0.200000", "mute"}));
    EXPECT_EQ(log.missing({"Device in state changed to mute"}), Texts());

    m.audio.simulateVolume(true, 0.2F, true);
    m.audio.simulateVolume(true, 0.2F, true);
    EXPECT_EQ(m.told(), (Names{"out|volume|3", "out|mute|1", "out|volume|3"}));
    EXPECT_EQ(m.mixer.levels()->out.volume, 3);
    EXPECT_EQ(log.missing({"Now speakers are mute"}), Texts());
    m.mixer.setVolume(true, 3);
    m.audio.fail("SetMasterVolumeLevelScalar");
    m.mixer.setVolume(false, 4);
    m.told();
    m.audio.fail("SetMute");
    m.mixer.setMute(true, false);
    m.told();
    EXPECT_EQ(m.audio.sets(), Texts());
    EXPECT_EQ(log.missing({"error orbelantine::AudioMixer::doSetVolume() Failed to set volume to 4 "
                           "for device in. Error = 0x88890004",
                           "Failed to set mute to 0 for device out. Error = 0x88890004"}),
              Texts());
    m.mixer.stop();
    EXPECT_EQ(m.mixer.getDefaultAudioDeviceId(true), L"");
    EXPECT_EQ(log.missing({"Failed to get default device out id. Error = 0x80070057"}), Texts());
}

} // namespace
} // namespace orbelantine::test
