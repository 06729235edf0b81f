#pragma once

#include <cstdint>

namespace orbelantine {

/// Which directions of sound the computer has no device for.
enum AudioState : std::int32_t {
    AudioAvailable = 0,
    NoAudioOut = 1,
    NoAudioIn = 2,
    NoAudioInOut = 3,
};

} // namespace orbelantine
