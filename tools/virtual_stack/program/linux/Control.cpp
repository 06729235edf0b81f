#include "tools/virtual_stack/program/linux/Control.h"

#include "tools/virtual_stack/linux/FakeBlueZ.h"
#include "tools/virtual_stack/program/linux/Options.h"

#include <optional>
#include <utility>

namespace orbelantine::stack {

namespace {

constexpr std::size_t kManyWords = 64;

/// A name may have blanks.
std::string joined(std::span<const std::string_view> words) {
    std::string text;
    for (const std::string_view word : words)
        text += (text.empty() ? "" : " ") + std::string(word);
    return text;
}

} // namespace

const phone::ControlCommand<Control> Control::kCommands[] = {
    {"ask", 1, kManyWords, "the name of a device that is there", &Control::ask},
    {"cancel", 0, 0, "nothing behind it", &Control::cancel},
    {"radio", 1, 1, "on or off", &Control::radio},
    {"add", 1, kManyWords, kWantedDevice, &Control::add},
    {"remove", 1, kManyWords, "the name of a device that is there", &Control::remove},
};

Control::Control(FakeBlueZ& stack, Complain complain)
    : mStack(stack)
    , mLines(*this, kCommands, std::move(complain)) {}

void Control::add(const DeviceSettings& device) {
    mDevices[device.name] = device.address;
    mStack.addDevice(device);
}

bool Control::ask(Words words) {
    const auto place = mDevices.find(joined(words));
    if (place != mDevices.end())
        mStack.phoneAsks(place->second);
    return place != mDevices.end();
}

bool Control::cancel(Words) {
    for (const auto& [name, address] : mDevices)
        mStack.phoneCancels(address);
    return true;
}

bool Control::radio(Words words) {
    if (words[0] != "on" && words[0] != "off")
        return false;
    mStack.power(words[0] == "on");
    return true;
}

bool Control::add(Words words) {
    const std::optional<DeviceSettings> device = parseDevice(joined(words));
    if (device)
        add(*device);
    return device.has_value();
}

bool Control::remove(Words words) {
    const auto place = mDevices.find(joined(words));
    if (place == mDevices.end())
        return false;
    mStack.removeDevice(place->second);
    mDevices.erase(place);
    return true;
}

} // namespace orbelantine::stack
