#include "audio/AudioApi.h"

#include "audio/windows/CallbackObjects.h"

#include <audioclient.h>
#include <propidl.h>
#include <propsys.h>
#include <wrl/client.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine {

namespace {

using Microsoft::WRL::ComPtr;

static_assert(hresult::kFail == E_FAIL && hresult::kInvalidArgument == E_INVALIDARG);
static_assert(hresult::kNotFound == HRESULT_FROM_WIN32(ERROR_NOT_FOUND));
static_assert(hresult::kDeviceInvalidated == AUDCLNT_E_DEVICE_INVALIDATED);
static_assert(static_cast<int>(AudioFlow::Capture) == eCapture);
static_assert(static_cast<int>(AudioRole::Communications) == eCommunications);
static_assert(kAudioDeviceActive == DEVICE_STATE_ACTIVE);
static_assert(kAudioDeviceDisabled == DEVICE_STATE_DISABLED);
static_assert(kAudioDeviceUnplugged == DEVICE_STATE_UNPLUGGED);
static_assert(CLSCTX_ALL == 23 && CLSCTX_INPROC_SERVER == 1 && STGM_READ == 0);

constexpr GUID kDeviceInterface{
    0xB3F8FA53, 0x0004, 0x438E, {0x90, 0x03, 0x51, 0xA4, 0x6E, 0x13, 0x9B, 0xFC}};
constexpr GUID kDevice{
    0xA45C254E, 0xDF1C, 0x4EFD, {0x80, 0x20, 0x67, 0xD1, 0x46, 0xA8, 0x50, 0xE0}};

PROPERTYKEY keyOf(AudioProperty property) {
    switch (property) {
    case AudioProperty::Name:
        return {kDeviceInterface, 6};
    case AudioProperty::Details:
        return {kDeviceInterface, 2};
    case AudioProperty::EnumeratorName:
        break;
    }
    return {kDevice, 24};
}

class PropertyValue {
  public:
    PropertyValue() { PropVariantInit(&mValue); }

    ~PropertyValue() { PropVariantClear(&mValue); }

    PropertyValue(const PropertyValue&) = delete;
    PropertyValue& operator=(const PropertyValue&) = delete;

    [[nodiscard]] PROPVARIANT* out() { return &mValue; }

    /// Null for a value that is no text.
    [[nodiscard]] const wchar_t* text() const {
        return mValue.vt == VT_LPWSTR ? mValue.pwszVal : nullptr;
    }

  private:
    PROPVARIANT mValue;
};

/// The callback objects that are registered with a source, which they don't outlast there.
template <class Object, class Source>
class Registrations {
  public:
    using Callback = typename Object::Callback;
    using Call = HRESULT (STDMETHODCALLTYPE Source::*)(typename Object::Interface*);

    Registrations(ComPtr<Source> source, Call adding, Call removing)
        : mSource(std::move(source))
        , mAdd(adding)
        , mRemove(removing) {}

    ~Registrations() {
        for (const auto& object : mObjects)
            (mSource.Get()->*mRemove)(object.Get());
    }

    Registrations(const Registrations&) = delete;
    Registrations& operator=(const Registrations&) = delete;

    AudioResult add(const boost::shared_ptr<Callback>& callback) {
        ComPtr<Object> object;
        // Not Attach, which counts once more in mingw-w64.
        *object.GetAddressOf() = new Object(callback);
        const HRESULT result = (mSource.Get()->*mAdd)(object.Get());
        if (SUCCEEDED(result))
            mObjects.push_back(object);
        return result;
    }

    AudioResult remove(const boost::shared_ptr<Callback>& callback) {
        const auto found = std::ranges::find_if(
            mObjects, [&](const auto& object) { return object->callback() == callback; });
        if (found == mObjects.end())
            return hresult::kNotFound;
        const HRESULT result = (mSource.Get()->*mRemove)(found->Get());
        mObjects.erase(found);
        return result;
    }

  private:
    const ComPtr<Source> mSource;
    const Call mAdd;
    const Call mRemove;
    std::vector<ComPtr<Object>> mObjects;
};

class CoreAudioControl final : public AudioControl {
  public:
    explicit CoreAudioControl(const ComPtr<IAudioEndpointVolume>& volume)
        : mVolume(volume)
        , mCallbacks(volume, &IAudioEndpointVolume::RegisterControlChangeNotify,
                     &IAudioEndpointVolume::UnregisterControlChangeNotify) {}

    AudioResult
    registerControlChangeNotify(const boost::shared_ptr<AudioVolumeCallback>& callback) override {
        return mCallbacks.add(callback);
    }

    AudioResult
    unregisterControlChangeNotify(const boost::shared_ptr<AudioVolumeCallback>& callback) override {
        return mCallbacks.remove(callback);
    }

    AudioResult getMasterVolumeLevelScalar(float& level) override {
        return mVolume->GetMasterVolumeLevelScalar(&level);
    }

    AudioResult setMasterVolumeLevelScalar(float level) override {
        return mVolume->SetMasterVolumeLevelScalar(level, nullptr);
    }

    AudioResult getMute(bool& mute) override {
        BOOL muted = FALSE;
        const HRESULT result = mVolume->GetMute(&muted);
        mute = muted != FALSE;
        return result;
    }

    AudioResult setMute(bool mute) override { return mVolume->SetMute(mute, nullptr); }

  private:
    const ComPtr<IAudioEndpointVolume> mVolume;
    Registrations<VolumeCallbackObject, IAudioEndpointVolume> mCallbacks;
};

class CoreAudioPropertyStore final : public AudioPropertyStore {
  public:
    explicit CoreAudioPropertyStore(ComPtr<IPropertyStore> store)
        : mStore(std::move(store)) {}

    AudioResult getValue(AudioProperty property, std::wstring& value) override {
        PropertyValue variant;
        const HRESULT result = mStore->GetValue(keyOf(property), variant.out());
        if (FAILED(result))
            return result;
        if (variant.text() == nullptr)
            return DISP_E_TYPEMISMATCH;
        value = variant.text();
        return result;
    }

  private:
    const ComPtr<IPropertyStore> mStore;
};

/// Makes what `given`, a call's output, is behind the seam.
template <class Handle, class Given, class Made>
AudioResult handOut(HRESULT result, const ComPtr<Given>& given, std::unique_ptr<Made>& made) {
    if (SUCCEEDED(result))
        made = std::make_unique<Handle>(given);
    return result;
}

class CoreAudioDevice final : public AudioDevice {
  public:
    explicit CoreAudioDevice(ComPtr<IMMDevice> device)
        : mDevice(std::move(device)) {}

    AudioResult activate(std::unique_ptr<AudioControl>& control) override {
        ComPtr<IAudioEndpointVolume> volume;
        const HRESULT result = mDevice->Activate(__uuidof(IAudioEndpointVolume),
                                                 CLSCTX_INPROC_SERVER, nullptr, &volume);
        return handOut<CoreAudioControl>(result, volume, control);
    }

    AudioResult openPropertyStore(std::unique_ptr<AudioPropertyStore>& properties) override {
        ComPtr<IPropertyStore> store;
        const HRESULT result = mDevice->OpenPropertyStore(STGM_READ, &store);
        return handOut<CoreAudioPropertyStore>(result, store, properties);
    }

    AudioResult getId(std::wstring& id) override {
        wchar_t* text = nullptr;
        const HRESULT result = mDevice->GetId(&text);
        if (SUCCEEDED(result))
            id = text;
        CoTaskMemFree(text);
        return result;
    }

    AudioResult getState(std::uint32_t& state) override {
        DWORD bits = 0;
        const HRESULT result = mDevice->GetState(&bits);
        state = bits;
        return result;
    }

  private:
    const ComPtr<IMMDevice> mDevice;
};

class CoreAudioDeviceCollection final : public AudioDeviceCollection {
  public:
    explicit CoreAudioDeviceCollection(ComPtr<IMMDeviceCollection> devices)
        : mDevices(std::move(devices)) {}

    AudioResult getCount(std::uint32_t& count) override {
        UINT devices = 0;
        const HRESULT result = mDevices->GetCount(&devices);
        count = devices;
        return result;
    }

    AudioResult item(std::uint32_t index, std::unique_ptr<AudioDevice>& device) override {
        ComPtr<IMMDevice> found;
        const HRESULT result = mDevices->Item(index, &found);
        return handOut<CoreAudioDevice>(result, found, device);
    }

  private:
    const ComPtr<IMMDeviceCollection> mDevices;
};

class CoreAudioDeviceEnumerator final : public AudioDeviceEnumerator {
  public:
    explicit CoreAudioDeviceEnumerator(const ComPtr<IMMDeviceEnumerator>& enumerator)
        : mEnumerator(enumerator)
        , mCallbacks(enumerator, &IMMDeviceEnumerator::RegisterEndpointNotificationCallback,
                     &IMMDeviceEnumerator::UnregisterEndpointNotificationCallback) {}

    AudioResult enumAudioEndpoints(AudioFlow flow, std::uint32_t stateMask,
                                   std::unique_ptr<AudioDeviceCollection>& devices) override {
        ComPtr<IMMDeviceCollection> found;
        const HRESULT result =
            mEnumerator->EnumAudioEndpoints(static_cast<EDataFlow>(flow), stateMask, &found);
        return handOut<CoreAudioDeviceCollection>(result, found, devices);
    }

    AudioResult getDefaultAudioEndpoint(AudioFlow flow, AudioRole role,
                                        std::unique_ptr<AudioDevice>& device) override {
        ComPtr<IMMDevice> found;
        const HRESULT result = mEnumerator->GetDefaultAudioEndpoint(
            static_cast<EDataFlow>(flow), static_cast<ERole>(role), &found);
        return handOut<CoreAudioDevice>(result, found, device);
    }

    AudioResult registerEndpointNotificationCallback(
        const boost::shared_ptr<AudioDeviceCallback>& callback) override {
        return mCallbacks.add(callback);
    }

    AudioResult unregisterEndpointNotificationCallback(
        const boost::shared_ptr<AudioDeviceCallback>& callback) override {
        return mCallbacks.remove(callback);
    }

  private:
    const ComPtr<IMMDeviceEnumerator> mEnumerator;
    Registrations<DeviceCallbackObject, IMMDeviceEnumerator> mCallbacks;
};

class CoreAudioApi final : public AudioApi {
  public:
    AudioResult coInitialize() override { return CoInitialize(nullptr); }

    void coUninitialize() override { CoUninitialize(); }

    AudioResult createEnumerator(std::unique_ptr<AudioDeviceEnumerator>& enumerator) override {
        ComPtr<IMMDeviceEnumerator> made;
        const HRESULT result = CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_ALL,
                                                __uuidof(IMMDeviceEnumerator), &made);
        return handOut<CoreAudioDeviceEnumerator>(result, made, enumerator);
    }
};

} // namespace

AudioApi& AudioApi::system() {
    static CoreAudioApi api;
    return api;
}

} // namespace orbelantine
