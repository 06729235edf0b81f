#pragma once

#include "input/sources/IMouseSource.h"

namespace orbelantine {

class IMediaBuffer;

/// For a phone that takes absolute positions: scales a surface position to 0..65535, turns it with
/// the screen and sends it on, as a touch where it has an id. Frames leave on the caller's thread.
class AbsoluteMouseSource : public IMouseSource {
  public:
    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override;
    void start(const boost::shared_ptr<IInputContext>& context) override;
    void stop() override;
    [[nodiscard]] bool isAbsolute() override;
    void killFocus() override;
    void mouseMove(std::int32_t x, std::int32_t y, std::int32_t id) override;
    void mouseLButton(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                      bool reconnect) override;
    void mouseRButton(bool down, std::int32_t x, std::int32_t y, bool reconnect) override;
    void touchMove(std::int32_t x, std::int32_t y, std::int32_t id) override;
    void touch(bool down, std::int32_t x, std::int32_t y, std::int32_t id, bool reconnect) override;
    void rawMouseMove(std::int32_t dx, std::int32_t dy) override;
    void mouseWheel(bool up, std::int32_t x, std::int32_t y, std::int32_t amount) override;

    virtual void move(std::int32_t x, std::int32_t y, std::int32_t id);
    /// Captures the system's mouse while pressed.
    virtual void leftClick(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                           bool reconnect);

    virtual ~AbsoluteMouseSource() = default;

  private:
    void countPress(bool down);
    void normalizeMouseCoordinates(std::int32_t& x, std::int32_t& y);
    void sendPosition(std::int32_t x, std::int32_t y, std::int32_t id, std::uint8_t type);
    void send(const boost::shared_ptr<IMediaBuffer>& buffer);

    boost::shared_ptr<IMediaElement> mTarget;
    boost::shared_ptr<IInputContext> mContext;
    std::int32_t mPressCount = 0;

  protected:
    /// How far the phone's screen is turned, in degrees: 0, 90, 180 or 270.
    std::int32_t mOrientationAngle = 0;
};

} // namespace orbelantine
