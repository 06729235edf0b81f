#pragma once

// clang-format off
#include <windows.h>
#include <objbase.h>
#include <mmdeviceapi.h>
#include <endpointvolume.h>
// clang-format on

#include "audio/AudioDeviceCallback.h"
#include "audio/AudioVolumeCallback.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <utility>

namespace orbelantine {

// The interfaces of COM have no destructors: objects end by their count.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// A COM object of one interface that hands what it is told to a portable callback, which it holds.
/// Lives from a count of 1 to one of 0, on any threads.
template <class ComInterface, class PortableCallback>
class CallbackObject : public ComInterface {
  public:
    using Interface = ComInterface;
    using Callback = PortableCallback;

    explicit CallbackObject(boost::shared_ptr<Callback> callback)
        : mCallback(std::move(callback)) {}

    CallbackObject(const CallbackObject&) = delete;
    CallbackObject& operator=(const CallbackObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr)
            return E_POINTER;
        const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(Interface);
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (!known)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return ++mCount; }

    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --mCount;
        if (left == 0)
            delete this;
        return left;
    }

    [[nodiscard]] const boost::shared_ptr<Callback>& callback() const { return mCallback; }

  protected:
    // Behind the interface's operations, whose slots are agreed.
    virtual ~CallbackObject() = default;

  private:
    const boost::shared_ptr<Callback> mCallback;
    std::atomic<ULONG> mCount = 1;
};

#pragma GCC diagnostic pop

class VolumeCallbackObject final
    : public CallbackObject<IAudioEndpointVolumeCallback, AudioVolumeCallback> {
  public:
    using CallbackObject::CallbackObject;

    HRESULT STDMETHODCALLTYPE OnNotify(AUDIO_VOLUME_NOTIFICATION_DATA* data) override;
};

class DeviceCallbackObject final
    : public CallbackObject<IMMNotificationClient, AudioDeviceCallback> {
  public:
    using CallbackObject::CallbackObject;

    HRESULT STDMETHODCALLTYPE OnDeviceStateChanged(LPCWSTR id, DWORD state) override;
    HRESULT STDMETHODCALLTYPE OnDeviceAdded(LPCWSTR id) override;
    HRESULT STDMETHODCALLTYPE OnDeviceRemoved(LPCWSTR id) override;
    HRESULT STDMETHODCALLTYPE OnDefaultDeviceChanged(EDataFlow flow, ERole role,
                                                     LPCWSTR id) override;
    HRESULT STDMETHODCALLTYPE OnPropertyValueChanged(LPCWSTR id, const PROPERTYKEY key) override;
};

} // namespace orbelantine
