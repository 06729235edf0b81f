#include "tools/virtual_phone/program/Control.h"

#include "tools/program/Parse.h"
#include "tools/virtual_phone/phone/Phone.h"

#include <optional>
#include <string>
#include <utility>

namespace orbelantine::phone {

const ControlCommand<Control> Control::kCommands[] = {
    {"screen", 4, 4,
     "a width and a height from 100 to 10000, a scale from 0.1 to 10 and a rotation from 1 to 4",
     &Control::changeScreen},
    {"acceleration", 1, 1, "none, android or curve", &Control::changeAcceleration},
    {"target", 2, 2, "a place on the screen", &Control::setTarget},
    {"vanish", 1, 1, "milliseconds from 1 to 60000", &Control::vanish},
};

Control::Control(Phone& phone, Vanish vanish)
    : mPhone(phone)
    , mVanish(std::move(vanish))
    , mLines(*this, kCommands, [&phone](const std::string& wrong) { phone.error(wrong); }) {}

bool Control::changeScreen(Words words) {
    Screen screen;
    if (!parseNumber(words[0], kMinScreen, kMaxScreen, screen.width) ||
        !parseNumber(words[1], kMinScreen, kMaxScreen, screen.height) ||
        !parseNumber(words[2], kMinScale, kMaxScale, screen.scale) ||
        !parseNumber(words[3], 1, 4, screen.rotation))
        return false;
    mPhone.setScreen(screen);
    return true;
}

bool Control::changeAcceleration(Words words) {
    const std::optional<Acceleration> acceleration = parseAcceleration(words[0]);
    if (acceleration)
        mPhone.setAcceleration(*acceleration);
    return acceleration.has_value();
}

bool Control::setTarget(Words words) {
    Point target;
    if (!parseNumber(words[0], 0, mPhone.screen().width - 1, target.x) ||
        !parseNumber(words[1], 0, mPhone.screen().height - 1, target.y))
        return false;
    mPhone.setTarget(target);
    return true;
}

bool Control::vanish(Words words) {
    constexpr int kLongest = 60000;
    int milliseconds = 0;
    if (!parseNumber(words[0], 1, kLongest, milliseconds))
        return false;
    mVanish(std::chrono::milliseconds(milliseconds));
    return true;
}

} // namespace orbelantine::phone
