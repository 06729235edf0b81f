#pragma once

#include "tools/program/ControlLines.h"
#include "tools/virtual_stack/linux/Settings.h"

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

namespace orbelantine::stack {

class FakeBlueZ;

/// The words with which a running stack's surroundings change, a line for each:
///
///     ask NAME
///     cancel
///     radio on|off
///     add ADDRESS=NAME[=CLASS]
///     remove NAME
///
/// A line that isn't one of these is complained of and has no effect.
class Control {
  public:
    using Complain = std::function<void(const std::string&)>;

    /// `stack` outlives the control.
    Control(FakeBlueZ& stack, Complain complain);
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    void add(const DeviceSettings& device);

    /// Any bytes, in any pieces; a line counts once its end has come.
    void receive(std::string_view bytes) { mLines.receive(bytes); }

  private:
    using Words = std::span<const std::string_view>;
    static const phone::ControlCommand<Control> kCommands[];

    [[nodiscard]] bool ask(Words words);
    [[nodiscard]] bool cancel(Words words);
    [[nodiscard]] bool radio(Words words);
    [[nodiscard]] bool add(Words words);
    [[nodiscard]] bool remove(Words words);

    FakeBlueZ& mStack;
    /// Addresses by name.
    std::map<std::string, std::string> mDevices;
    phone::ControlLines<Control> mLines;
};

} // namespace orbelantine::stack
