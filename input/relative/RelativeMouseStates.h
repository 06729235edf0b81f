#pragma once

#include "input/relative/RelativeMouseSource.h"

namespace orbelantine {

class IDelayTimer;

/// Waits for the phone's dimensions.
class RelativeMouseStateStart final : public RelativeMouseSource::State {
  public:
    using State::State;

    [[nodiscard]] std::string getName() const override { return "RelativeMouseStateStart"; }

    void onEnter() override;
    void rmiServerStarted(error_code ec) override;
    void rmiLogicalDimensions(std::int32_t width, std::int32_t height, double scale,
                              std::int32_t inset) override;
};

/// Serves the mouse. Between two clicks the phone's cursor is parked.
class RelativeMouseStateReady final : public RelativeMouseSource::State {
  public:
    using State::State;

    [[nodiscard]] std::string getName() const override { return "RelativeMouseStateReady"; }

    void onEnter() override;
    void onExit() override;
    void killFocus() override;
    /// Nothing: a place alone never moves the phone's cursor.
    void mouseMove(std::int32_t x, std::int32_t y, std::int32_t id) override;
    void mouseLButton(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                      bool reconnect) override;
    void mouseRButton(bool down, std::int32_t x, std::int32_t y, bool reconnect) override;
    void touchMove(std::int32_t x, std::int32_t y, std::int32_t id) override;
    void touch(bool down, std::int32_t x, std::int32_t y, std::int32_t id, bool reconnect) override;
    void rawMouseMove(std::int32_t dx, std::int32_t dy) override;
    void mouseWheel(bool up, std::int32_t x, std::int32_t y, std::int32_t amount) override;
    void rmiMousePosition(std::int32_t x, std::int32_t y) override;
    void rmiLogicalDimensions(std::int32_t width, std::int32_t height, double scale,
                              std::int32_t inset) override;
    void rotationChanged(std::int32_t rotation) override;

  private:
    void doClick(bool touch, bool down, std::int32_t x, std::int32_t y, bool reconnect);
    [[nodiscard]] CursorPoint clickPoint(bool touch, bool down, std::int32_t x,
                                         std::int32_t y) const;
    [[nodiscard]] bool isLeftHeld() const;
    void startRehideTimer();
    void cancelRehideTimer();

    /// After a wheel event; null if none is pending.
    boost::shared_ptr<IDelayTimer> mRehideTimer;
};

/// The end of the source.
class RelativeMouseStateFini final : public RelativeMouseSource::State {
  public:
    using State::State;

    [[nodiscard]] std::string getName() const override { return "RelativeMouseStateFini"; }

    void onEnter() override;
};

} // namespace orbelantine
