#pragma once

#include "audio/AudioDeviceCallback.h"
#include "audio/AudioVolumeCallback.h"
#include "core/common/config/SettingsApi.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// A device; its name is its id too.
struct FakeEndpoint {
    std::wstring name;
    std::wstring enumerator = L"HDAUDIO";
    std::uint32_t state = kAudioDeviceActive;
};

inline const FakeEndpoint kCard{L"Card"};
inline const FakeEndpoint kHeadset{L"Headset", L"bthenum"};

using FakeEndpoints = std::vector<FakeEndpoint>;

/// The devices of a direction, the default one if there is one, and what their controls read.
struct FakeSide {
    FakeEndpoints endpoints;
    FakeEndpoints preferred;
    float level = 0.5F;
    bool mute = false;
};

/// A sound system as a script tells it, with the setting for headsets. Any thread may call; the
/// public fields are for when none does.
class FakeAudio final : public AudioApi, public SettingsApi {
  public:
    using VolumeListener = boost::shared_ptr<AudioVolumeCallback>;
    using DeviceListener = boost::shared_ptr<AudioDeviceCallback>;
    using Texts = std::vector<std::string>;

    /// Of in and out.
    std::array<FakeSide, 2> sides;
    /// The name of the calls that fail, with kDeviceInvalidated.
    std::string failing;
    std::optional<std::uint32_t> headsetConfiguration;
    /// What was set.
    Texts sets;

    /// Tells whoever is registered of a change, on the calling thread.
    void simulateVolume(bool out, float level, bool mute) {
        const AudioVolumeNotification notification{mute, level};
        for (const auto& listener : locked([&] { return mVolumeListeners[out]; }))
            (void)listener->onNotify(&notification);
    }

    template <class Event>
    void simulateDevices(Event event) {
        for (const auto& listener : locked([this] { return mDeviceListeners; }))
            event(*listener);
    }

    /// The calls that came on another thread than the one that initialised, once every handle,
    /// registration and initialisation has been given back.
    Texts awaitAllGivenBack() {
        std::unique_lock lock(mMutex);
        if (!mChanged.wait_for(lock, std::chrono::seconds(10), [this] { return mHeld == 0; }))
            mStrays.push_back("not all is given back");
        return mStrays;
    }

    AudioResult coInitialize() override {
        mOwner = std::this_thread::get_id();
        return call("CoInitialize", [this] { ++mHeld; });
    }

    void coUninitialize() override { giveBack(); }

    AudioResult createEnumerator(std::unique_ptr<AudioDeviceEnumerator>& enumerator) override {
        return call("CoCreateInstance", [&] { enumerator = std::make_unique<Handle>(*this); });
    }

    Error getInteger(const char* name, std::uint32_t& value) override {
        value = headsetConfiguration.value_or(99);
        return headsetConfiguration && std::string(name) == "BtHeadsetCfg" ? 0 : 2;
    }

  private:
    /// Whatever there is to be made and given back.
    struct Handle final : AudioControl,
                          AudioPropertyStore,
                          AudioDevice,
                          AudioDeviceCollection,
                          AudioDeviceEnumerator {
        explicit Handle(FakeAudio& fake, bool isOut = false, FakeEndpoints e = {})
            : audio(fake)
            , out(isOut)
            , endpoints(std::move(e)) {
            ++audio.mHeld;
        }

        ~Handle() override { audio.giveBack(); }

        template <class Made>
        AudioResult make(const char* name, std::unique_ptr<Made>& made) const {
            return audio.call(name,
                              [&] { made = std::make_unique<Handle>(audio, out, endpoints); });
        }

        AudioResult registerControlChangeNotify(const VolumeListener& listener) override {
            return audio.add("RegisterControlChangeNotify", audio.mVolumeListeners[out], listener);
        }

        AudioResult unregisterControlChangeNotify(const VolumeListener& listener) override {
            return audio.remove(audio.mVolumeListeners[out], listener);
        }

        AudioResult getMasterVolumeLevelScalar(float& v) override {
            return audio.call("GetMasterVolumeLevelScalar", [&] { v = audio.sides[out].level; });
        }

        AudioResult setMasterVolumeLevelScalar(float level) override {
            return audio.call("SetMasterVolumeLevelScalar",
                              [&] { audio.sets.push_back(std::to_string(level)); });
        }

        AudioResult getMute(bool& mute) override {
            return audio.call("GetMute", [&] { mute = audio.sides[out].mute; });
        }

        AudioResult setMute(bool mute) override {
            return audio.call("SetMute", [&] { audio.sets.push_back(mute ? "mute" : "sound"); });
        }

        AudioResult getValue(AudioProperty property, std::wstring& value) override {
            const std::array values{endpoints[0].name, std::wstring(L"details"),
                                    endpoints[0].enumerator};
            return audio.call("GetValue", [&] { value = values.at(std::size_t(property)); });
        }

        AudioResult activate(std::unique_ptr<AudioControl>& control) override {
            return make("Activate", control);
        }

        AudioResult openPropertyStore(std::unique_ptr<AudioPropertyStore>& properties) override {
            return make("OpenPropertyStore", properties);
        }

        AudioResult getId(std::wstring& id) override {
            return audio.call("GetId", [&] { id = endpoints[0].name; });
        }

        AudioResult getState(std::uint32_t& state) override {
            return audio.call("GetState", [&] { state = endpoints[0].state; });
        }

        AudioResult getCount(std::uint32_t& count) override {
            return audio.call("GetCount", [&] { count = std::uint32_t(endpoints.size()); });
        }

        AudioResult item(std::uint32_t i, std::unique_ptr<AudioDevice>& device) override {
            return Handle(audio, out, {endpoints.at(i)}).make("Item", device);
        }

        AudioResult enumAudioEndpoints(AudioFlow flow, std::uint32_t mask,
                                       std::unique_ptr<AudioDeviceCollection>& devices) override {
            const bool isOut = flow == AudioFlow::Render;
            FakeEndpoints found = audio.sides[isOut].endpoints;
            std::erase_if(found, [mask](const auto& e) { return (e.state & mask) == 0; });
            return Handle(audio, isOut, found).make("EnumAudioEndpoints", devices);
        }

        AudioResult getDefaultAudioEndpoint(AudioFlow flow, AudioRole role,
                                            std::unique_ptr<AudioDevice>& device) override {
            const bool isOut = flow == AudioFlow::Render;
            const Handle found(audio, isOut, audio.sides[isOut].preferred);
            if (found.endpoints.empty() || role != AudioRole::Console)
                return hresult::kNotFound;
            return found.make("GetDefaultAudioEndpoint", device);
        }

        AudioResult registerEndpointNotificationCallback(const DeviceListener& listener) override {
            return audio.add("RegisterEndpointNotificationCallback", audio.mDeviceListeners,
                             listener);
        }

        AudioResult
        unregisterEndpointNotificationCallback(const DeviceListener& listener) override {
            return audio.remove(audio.mDeviceListeners, listener);
        }

        FakeAudio& audio;
        const bool out;
        const FakeEndpoints endpoints;
    };

    template <class Body>
    auto locked(Body body) -> decltype(body()) {
        const std::lock_guard lock(mMutex);
        return body();
    }

    template <class Body>
    AudioResult call(const std::string& name, Body body) {
        const std::lock_guard lock(mMutex);
        if (mOwner != std::this_thread::get_id())
            mStrays.push_back(name);
        if (name == failing)
            return hresult::kDeviceInvalidated;
        body();
        return hresult::kOk;
    }

    template <class Listener>
    AudioResult add(const char* name, std::vector<Listener>& listeners, const Listener& added) {
        return call(name, [&] { listeners.push_back(added), ++mHeld; });
    }

    template <class Listener>
    AudioResult remove(std::vector<Listener>& listeners, const Listener& removed) {
        if (locked([&] { return std::erase(listeners, removed); }) != 0)
            giveBack();
        return hresult::kOk;
    }

    void giveBack() {
        (void)call("giving back", [this] { --mHeld, mChanged.notify_all(); });
    }

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::atomic<int> mHeld = 0;
    std::array<std::vector<VolumeListener>, 2> mVolumeListeners;
    std::vector<DeviceListener> mDeviceListeners;
    Texts mStrays;
    std::thread::id mOwner;
};

} // namespace orbelantine::test
