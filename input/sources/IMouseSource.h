#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>

namespace orbelantine {

class IInputContext;
class IMediaElement;

/// What turns a surface's mouse and pointers into mouse and touch buffers for a target. Calls come
/// one at a time. There is no deletion through this interface: sources are held by shared pointers
/// made from the class itself.
class IMouseSource {
  public:
    virtual void registerTarget(const boost::shared_ptr<IMediaElement>& target) = 0;
    virtual void start(const boost::shared_ptr<IInputContext>& context) = 0;
    virtual void stop() = 0;
    /// True if pointers are to be given in surface coordinates rather than the screen's.
    [[nodiscard]] virtual bool isAbsolute() = 0;
    virtual void killFocus() = 0;
    virtual void mouseMove(std::int32_t x, std::int32_t y, std::int32_t id) = 0;
    /// `reconnect`: the phone may have come back since the last click.
    virtual void mouseLButton(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                              bool reconnect) = 0;
    virtual void mouseRButton(bool down, std::int32_t x, std::int32_t y, bool reconnect) = 0;
    virtual void touchMove(std::int32_t x, std::int32_t y, std::int32_t id) = 0;
    virtual void touch(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                       bool reconnect) = 0;
    virtual void rawMouseMove(std::int32_t dx, std::int32_t dy) = 0;
    /// `up`: the amount is at least 1.
    virtual void mouseWheel(bool up, std::int32_t x, std::int32_t y, std::int32_t amount) = 0;

  protected:
    ~IMouseSource() = default;
};

} // namespace orbelantine
