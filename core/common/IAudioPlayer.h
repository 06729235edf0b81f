#pragma once

#include "core/common/errors/ErrorCode.h"

namespace orbelantine {

/// Plays a phone's audio on the computer.
class IAudioPlayer {
  public:
    class Dummy;

    virtual ~IAudioPlayer() = default;
    [[nodiscard]] virtual error_code start() = 0;
    virtual void stop() = 0;
};

/// Starts with success and plays nothing.
class IAudioPlayer::Dummy final : public IAudioPlayer {
  public:
    [[nodiscard]] error_code start() override;
    void stop() override;
};

} // namespace orbelantine
