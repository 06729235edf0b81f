#pragma once

#include <boost/signals2/signal.hpp>

#include <cstdint>

namespace orbelantine {

/// Moves and presses the computer's own pointer, as its user would. Any thread may call; what can't
/// be injected is logged.
class IPointerInjector {
  public:
    /// The buttons' forms of injectMouseInput.
    struct LeftDown {};

    struct LeftUp {};

    struct RightDown {};

    struct RightUp {};

    IPointerInjector() = default;
    virtual ~IPointerInjector() = default;
    IPointerInjector(const IPointerInjector&) = delete;
    IPointerInjector& operator=(const IPointerInjector&) = delete;

    /// By so many counts of a mouse.
    virtual void injectMouseInput(std::int16_t dx, std::int16_t dy) = 0;
    virtual void injectMouseInput(LeftDown) = 0;
    virtual void injectMouseInput(LeftUp) = 0;
    virtual void injectMouseInput(RightDown) = 0;
    virtual void injectMouseInput(RightUp) = 0;

    /// For implementations that can tell; nothing here raises it.
    boost::signals2::signal<void(bool)> onInjectionStateChanged;
};

} // namespace orbelantine
