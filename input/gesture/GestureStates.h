#pragma once

#include "input/gesture/GestureController.h"

#include <boost/smart_ptr/shared_ptr.hpp>

namespace orbelantine {

/// Waits for a press.
class GestureStateIdle final : public GestureController::State {
  public:
    using State::State;

    [[nodiscard]] std::string getName() const override { return "GestureStateIdle"; }

    void onEnter() override;
    void onExit() override;
    bool mouseLButton(bool down) override;
};

/// Counts what follows a press.
class GestureStateDetection final : public GestureController::State {
  public:
    using State::State;

    [[nodiscard]] std::string getName() const override { return "GestureStateDetection"; }

    void onEnter() override;
    void onExit() override;
    /// Counts every movement, and keeps one that goes right or down.
    bool mouseDelta(std::int32_t dx, std::int32_t dy) override;
    bool mouseLButton(bool down) override;
};

/// Goes on with a burst, a movement for each that comes back, until a press.
class GestureStateInjection final : public GestureController::State {
  public:
    using State::State;

    [[nodiscard]] std::string getName() const override { return "GestureStateInjection"; }

    void onEnter() override;
    void onExit() override;
    /// The echo of an injected movement, whatever it is.
    bool mouseDelta(std::int32_t dx, std::int32_t dy) override;
    bool mouseLButton(bool down) override;

  private:
    /// Whether another movement follows.
    bool tick();
    void inject(std::int32_t dx, std::int32_t dy);
    void cancelTimer();

    std::int32_t mTicks = 0;
    /// Null if none is pending.
    boost::shared_ptr<IDelayTimer> mTimer;
};

} // namespace orbelantine
