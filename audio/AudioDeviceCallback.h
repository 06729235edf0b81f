#pragma once

#include "audio/AudioApi.h"

#include <boost/signals2/signal.hpp>

#include <cstdint>

namespace orbelantine {

/// Takes the notifications of devices that come, go and change, on the thread of the system's that
/// brings them, and boils them down to the directions that are to be looked up anew. An id may be
/// null.
class AudioDeviceCallback {
  public:
    boost::signals2::signal<void()> onInDevice;
    boost::signals2::signal<void()> onOutDevice;

    /// Of the default devices, those of `role` count.
    explicit AudioDeviceCallback(AudioRole role)
        : mRole(role) {}

    AudioResult onDeviceStateChanged(const wchar_t* id, std::uint32_t state);
    AudioResult onDeviceAdded(const wchar_t* id);
    AudioResult onDeviceRemoved(const wchar_t* id);
    AudioResult onDefaultDeviceChanged(AudioFlow flow, AudioRole role, const wchar_t* id);
    AudioResult onPropertyValueChanged();

  private:
    AudioResult tellBoth();

    AudioRole mRole;
};

} // namespace orbelantine
