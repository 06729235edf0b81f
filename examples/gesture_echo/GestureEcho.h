#pragma once

#include "input/context/IInputContext.h"
#include "input/gesture/GestureController.h"
#include "input/pointer/IPointerInjector.h"

#include <boost/signals2/connection.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace orbelantine::example {

/// A flick of the mouse that goes on: a burst over the surface is repeated as movements of the
/// computer's own pointer. These come back as raw movements of the surface, and each brings the
/// next.
class GestureEcho {
  public:
    GestureEcho(IInputContext& surface, IPointerInjector& injector,
                IClock& clock = IClock::system())
        : mController(clock) {
        mController.onInjection.connect([&injector](std::int32_t dx, std::int32_t dy, bool) {
            injector.injectMouseInput(counts(dx), counts(dy));
        });
        mConnections = {
            surface.onMouseClickDown.connect([this](auto button, auto...) { press(button, true); }),
            surface.onMouseClickUp.connect([this](auto button, auto...) { press(button, false); }),
            surface.onRelativeMouseMove.connect(
                [this](auto dx, auto dy) { mController.mouseDelta(dx, dy); }),
        };
    }

    GestureController& controller() { return mController; }

  private:
    using Connection = boost::signals2::scoped_connection;

    /// An injected movement has 16 bits.
    static std::int16_t counts(std::int32_t delta) {
        using Limits = std::numeric_limits<std::int16_t>;
        return static_cast<std::int16_t>(
            std::clamp<std::int32_t>(delta, Limits::min(), Limits::max()));
    }

    void press(IInputContext::eMouseButton button, bool down) {
        if (button == IInputContext::MouseButtonLeft)
            mController.mouseLButton(down);
    }

    GestureController mController;
    // Gone first: they call the controller.
    std::array<Connection, 3> mConnections;
};

} // namespace orbelantine::example
