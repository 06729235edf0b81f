#pragma once

#include "tools/program/ControlLines.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

namespace orbelantine::phone {

class Phone;

/// The words with which a running session changes the phone, a line for each:
///
///     screen WIDTH HEIGHT SCALE ROTATION
///     acceleration none|android|curve
///     target X Y
///     vanish MS
///
/// A line that isn't one of these is an error in the phone's log and has no effect.
class Control {
  public:
    static constexpr std::size_t kMaxLine = ControlLines<Control>::kMaxLine;

    /// Makes the phone disappear, and come back after so long.
    using Vanish = std::function<void(std::chrono::milliseconds)>;

    /// `phone` outlives the control.
    Control(Phone& phone, Vanish vanish);
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    /// Any bytes, in any pieces; a line counts once its end has come.
    void receive(std::string_view bytes) { mLines.receive(bytes); }

  private:
    using Words = std::span<const std::string_view>;
    static const ControlCommand<Control> kCommands[];

    [[nodiscard]] bool changeScreen(Words words);
    [[nodiscard]] bool changeAcceleration(Words words);
    [[nodiscard]] bool setTarget(Words words);
    [[nodiscard]] bool vanish(Words words);

    Phone& mPhone;
    Vanish mVanish;
    ControlLines<Control> mLines;
};

} // namespace orbelantine::phone
