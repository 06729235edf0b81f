#include "audio/AudioMixer.h"
#include "audio/windows/CallbackObjects.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>

namespace orbelantine {
namespace {

template <class Object>
void expectUsualObject(Object* object) {
    using Interface = typename Object::Interface;
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->Release(), 1u);
    void* found = nullptr;
    for (const IID& iid : {__uuidof(IUnknown), __uuidof(Interface)}) {
        ASSERT_EQ(object->QueryInterface(iid, &found), S_OK);
        EXPECT_EQ(found, static_cast<Interface*>(object));
        EXPECT_EQ(object->Release(), 1u);
    }
    EXPECT_EQ(object->QueryInterface(__uuidof(IMMDevice), &found),
              static_cast<HRESULT>(0x80004002));
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(object->QueryInterface(__uuidof(IUnknown), nullptr), E_POINTER);
    const auto callback = object->callback();
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(callback.use_count(), 1);
}

TEST(CoreAudio, VolumeNotificationReachesTheCallback) {
    const auto object = new VolumeCallbackObject(boost::make_shared<AudioVolumeCallback>());
    std::string told;
    object->callback()->onNotified.connect([&](const AudioVolumeNotification* data) {
        told += std::to_string(data->masterVolume) + (data->muted ? " mute;" : ";");
    });
    IAudioEndpointVolumeCallback& client = *object;
    AUDIO_VOLUME_NOTIFICATION_DATA data{};
    data.fMasterVolume = 0.25F;
    EXPECT_EQ(client.OnNotify(&data), S_OK);
    data.bMuted = TRUE;
    EXPECT_EQ(client.OnNotify(&data), S_OK);
    EXPECT_EQ(client.OnNotify(nullptr), E_INVALIDARG);
    EXPECT_EQ(told, "0.250000;0.250000 mute;");
    expectUsualObject(object);
}

TEST(CoreAudio, DeviceNotificationsReachTheCallback) {
    const auto object =
        new DeviceCallbackObject(boost::make_shared<AudioDeviceCallback>(AudioRole::Console));
    std::string told;
    object->callback()->onInDevice.connect([&] { told += 'i'; });
    object->callback()->onOutDevice.connect([&] { told += 'o'; });
    IMMNotificationClient& client = *object;
    EXPECT_EQ(client.OnDeviceStateChanged(L"id", DEVICE_STATE_DISABLED), S_OK);
    EXPECT_EQ(client.OnDeviceAdded(L"id"), S_OK);
    EXPECT_EQ(client.OnDeviceRemoved(nullptr), S_OK);
    EXPECT_EQ(told, "oioioi");
    EXPECT_EQ(client.OnDefaultDeviceChanged(eRender, eMultimedia, L"id"), S_OK);
    EXPECT_EQ(client.OnPropertyValueChanged(L"id", {}), S_OK);
    EXPECT_EQ(client.OnDefaultDeviceChanged(eCapture, eConsole, nullptr), S_OK);
    EXPECT_EQ(client.OnDefaultDeviceChanged(eRender, eConsole, L"id"), S_OK);
    EXPECT_EQ(told, "oioioiio");
    expectUsualObject(object);
}

TEST(CoreAudio, MachineWithoutSoundHasNoDevices) {
    AudioApi& api = AudioApi::system();
    ASSERT_EQ(api.coInitialize(), S_OK);
    std::unique_ptr<AudioDeviceEnumerator> enumerator;
    ASSERT_EQ(api.createEnumerator(enumerator), S_OK);
    std::unique_ptr<AudioDeviceCollection> devices;
    ASSERT_EQ(enumerator->enumAudioEndpoints(AudioFlow::Render, kAudioDeviceActive, devices), S_OK);
    std::uint32_t count = 77;
    EXPECT_EQ(devices->getCount(count), S_OK);
    if (count != 0)
        GTEST_SKIP() << "this machine has sound";
    std::unique_ptr<AudioDevice> device;
    EXPECT_EQ(enumerator->getDefaultAudioEndpoint(AudioFlow::Capture, AudioRole::Console, device),
              static_cast<HRESULT>(0x80070490));

    const auto callback = boost::make_shared<AudioDeviceCallback>(AudioRole::Console);
    EXPECT_EQ(enumerator->registerEndpointNotificationCallback(callback), S_OK);
    EXPECT_EQ(enumerator->unregisterEndpointNotificationCallback(callback), S_OK);
    EXPECT_EQ(callback.use_count(), 1);
    EXPECT_EQ(enumerator->registerEndpointNotificationCallback(callback), S_OK);
    enumerator.reset();
    EXPECT_EQ(callback.use_count(), 1);
    devices.reset();
    api.coUninitialize();

    AudioMixer mixer(AudioRole::Console, true);
    std::promise<int> started;
    mixer.start(15, [&](const error_code& ec) { started.set_value(ec.value()); });
    EXPECT_EQ(started.get_future().get(), 20242);
    mixer.stop();
}

} // namespace
} // namespace orbelantine
