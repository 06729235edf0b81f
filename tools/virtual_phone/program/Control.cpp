#include "tools/virtual_phone/program/Control.h"

#include "tools/program/Parse.h"
#include "tools/virtual_phone/phone/Phone.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <span>
#include <vector>

namespace orbelantine::phone {

namespace {

std::vector<std::string_view> split(std::string_view line) {
    constexpr std::string_view kBlanks = " \t\r";
    std::vector<std::string_view> words;
    for (std::size_t begin = line.find_first_not_of(kBlanks); begin != std::string_view::npos;) {
        const std::size_t end = std::min(line.find_first_of(kBlanks, begin), line.size());
        words.push_back(line.substr(begin, end - begin));
        begin = line.find_first_not_of(kBlanks, end);
    }
    return words;
}

} // namespace

struct Control::Command {
    std::string_view name;
    std::size_t words;
    /// Ends the sentence "name wants ...".
    const char* wants;
    bool (Control::*apply)(Words);
};

const Control::Command Control::kCommands[] = {
    {"screen", 4,
     "a width and a height from 100 to 10000, a scale from 0.1 to 10 and a rotation from 1 to 4",
     &Control::changeScreen},
    {"acceleration", 1, "none, android or curve", &Control::changeAcceleration},
    {"target", 2, "a place on the screen", &Control::setTarget},
    {"vanish", 1, "milliseconds from 1 to 60000", &Control::vanish},
};

void Control::receive(std::string_view bytes) {
    for (const char c : bytes) {
        if (c == '\n') {
            take(mLine);
            mLine.clear();
        } else if (mLine.size() <= kMaxLine) {
            mLine += c;
        }
    }
}

void Control::take(std::string_view line) {
    if (line.size() > kMaxLine)
        return mPhone.error("a control line is longer than 256 bytes");
    const std::vector<std::string_view> words = split(line);
    const auto* command = words.empty()
                              ? std::end(kCommands)
                              : std::ranges::find(kCommands, words.front(), &Command::name);
    const std::string shown = "'" + std::string(line) + "'";
    if (command == std::end(kCommands))
        return mPhone.error("unknown control line " + shown);
    const Words arguments = Words(words).subspan(1);
    if (arguments.size() != command->words || !(this->*command->apply)(arguments))
        mPhone.error(std::string(command->name) + " wants " + command->wants + ", not " + shown);
}

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
