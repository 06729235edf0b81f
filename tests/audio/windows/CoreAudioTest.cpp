#include "audio/AudioApi.h"
#include "audio/windows/CallbackObjects.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <gtest/gtest.h>
#include <wrl/client.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine {
namespace {

using Microsoft::WRL::ComPtr;

template <class Object>
class CallbackObjects : public testing::Test {};

using BothObjects = testing::Types<VolumeCallbackObject, DeviceCallbackObject>;
TYPED_TEST_SUITE(CallbackObjects, BothObjects);

boost::shared_ptr<AudioVolumeCallback> portable(VolumeCallbackObject*) {
    return boost::make_shared<AudioVolumeCallback>();
}

boost::shared_ptr<AudioDeviceCallback> portable(DeviceCallbackObject*) {
    return boost::make_shared<AudioDeviceCallback>(AudioRole::Console);
}

TYPED_TEST(CallbackObjects, HaveTwoInterfacesAndLiveByTheirCount) {
    const auto callback = portable(static_cast<TypeParam*>(nullptr));
    auto* const object = new TypeParam(callback);
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->Release(), 1u);

    void* found = nullptr;
    for (const IID& iid : {IID_IUnknown, __uuidof(typename TypeParam::Interface)}) {
        ASSERT_EQ(object->QueryInterface(iid, &found), S_OK);
        EXPECT_EQ(found, static_cast<typename TypeParam::Interface*>(object));
        EXPECT_EQ(object->Release(), 1u);
    }
    EXPECT_EQ(object->QueryInterface(__uuidof(IMMDevice), &found),
              static_cast<HRESULT>(0x80004002));
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(object->QueryInterface(IID_IUnknown, nullptr), E_POINTER);

    EXPECT_EQ(callback.use_count(), 2);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_EQ(callback.use_count(), 1);
}

TEST(CoreAudio, VolumeNotificationReachesTheCallback) {
    const auto callback = boost::make_shared<AudioVolumeCallback>();
    ComPtr<IAudioEndpointVolumeCallback> object;
    *object.GetAddressOf() = new VolumeCallbackObject(callback);
    std::vector<float> told;
    callback->onNotified.connect([&](const AudioVolumeNotification* data) {
        told.push_back(data->muted ? -data->masterVolume : data->masterVolume);
    });
    AUDIO_VOLUME_NOTIFICATION_DATA data{};
    data.fMasterVolume = 0.25F;
    EXPECT_EQ(object->OnNotify(&data), S_OK);
    data.bMuted = TRUE;
    EXPECT_EQ(object->OnNotify(&data), S_OK);
    EXPECT_EQ(object->OnNotify(nullptr), E_INVALIDARG);
    EXPECT_EQ(told, (std::vector<float>{0.25F, -0.25F}));
}

TEST(CoreAudio, DeviceNotificationsReachTheCallback) {
    const auto callback = boost::make_shared<AudioDeviceCallback>(AudioRole::Console);
    ComPtr<IMMNotificationClient> object;
    *object.GetAddressOf() = new DeviceCallbackObject(callback);
    std::string told;
    callback->onInDevice.connect([&] { told += 'i'; });
    callback->onOutDevice.connect([&] { told += 'o'; });
    const auto toldBy = [&](HRESULT result) {
        EXPECT_EQ(result, S_OK);
        return std::exchange(told, {});
    };
    EXPECT_EQ(toldBy(object->OnDeviceStateChanged(L"id", DEVICE_STATE_DISABLED)), "oi");
    EXPECT_EQ(toldBy(object->OnDeviceAdded(L"id")), "oi");
    EXPECT_EQ(toldBy(object->OnDeviceRemoved(nullptr)), "oi");
    EXPECT_EQ(toldBy(object->OnDefaultDeviceChanged(eRender, eConsole, nullptr)), "o");
    EXPECT_EQ(toldBy(object->OnDefaultDeviceChanged(eCapture, eConsole, L"id")), "i");
    EXPECT_EQ(toldBy(object->OnDefaultDeviceChanged(eCapture, eMultimedia, L"id")), "");
    EXPECT_EQ(toldBy(object->OnPropertyValueChanged(L"id", {})), "");
}

TEST(CoreAudio, MachineWithoutSoundHasNoDevices) {
    AudioApi& api = AudioApi::system();
    ASSERT_EQ(api.coInitialize(), S_OK);
    std::unique_ptr<AudioDeviceEnumerator> enumerator;
    ASSERT_EQ(api.createEnumerator(enumerator), S_OK);
    const auto callback = boost::make_shared<AudioDeviceCallback>(AudioRole::Console);
    EXPECT_EQ(enumerator->registerEndpointNotificationCallback(callback), S_OK);
    EXPECT_EQ(callback.use_count(), 2);
    for (const AudioFlow flow : {AudioFlow::Render, AudioFlow::Capture}) {
        std::unique_ptr<AudioDeviceCollection> devices;
        ASSERT_EQ(enumerator->enumAudioEndpoints(flow, kAudioDeviceActive, devices), S_OK);
        std::uint32_t count = 77;
        EXPECT_EQ(devices->getCount(count), S_OK);
        if (count != 0)
            GTEST_SKIP() << "this machine has sound";
        std::unique_ptr<AudioDevice> device;
        EXPECT_EQ(devices->item(0, device), hresult::kInvalidArgument);
        EXPECT_EQ(enumerator->getDefaultAudioEndpoint(flow, AudioRole::Console, device),
                  hresult::kNotFound);
        EXPECT_EQ(device, nullptr);
    }
    EXPECT_EQ(enumerator->unregisterEndpointNotificationCallback(callback), S_OK);
    EXPECT_EQ(callback.use_count(), 1);
    EXPECT_EQ(enumerator->unregisterEndpointNotificationCallback(callback), hresult::kNotFound);
    EXPECT_EQ(enumerator->registerEndpointNotificationCallback(callback), S_OK);
    enumerator.reset();
    EXPECT_EQ(callback.use_count(), 1);
    api.coUninitialize();
}

} // namespace
} // namespace orbelantine
