#include "tools/virtual_stack/program/linux/Options.h"

#include "tools/virtual_phone/driver/Address.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>

namespace orbelantine::stack {

namespace {

using phone::CommandLine;
using phone::CommandOption;

constexpr std::size_t kMaxName = 64;
constexpr std::uint32_t kMostClass = 0xFFFFFF;

struct NamedClass {
    std::string_view name;
    std::uint32_t number;
};

constexpr NamedClass kClasses[] = {
    {"phone", 0x5A020C},   {"tablet", 0x1A0114},   {"computer", 0x1C010C},
    {"headset", 0x240404}, {"keyboard", 0x002540},
};

std::optional<std::uint32_t> parseClass(std::string_view text) {
    const auto* named = std::ranges::find(kClasses, text, &NamedClass::name);
    if (named != std::end(kClasses))
        return named->number;
    if (!text.starts_with("0x"))
        return std::nullopt;
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data() + 2, end, number, 16);
    const bool isNumber = error == std::errc() && last == end && number <= kMostClass;
    return isNumber ? std::optional(number) : std::nullopt;
}

bool setText(std::string& target, std::string_view value) {
    target = value;
    return !value.empty();
}

bool addDevice(Options& options, std::string_view value) {
    const std::optional<DeviceSettings> device = parseDevice(value);
    if (device)
        options.devices.push_back(*device);
    return device.has_value();
}

constexpr CommandOption<Options> kOptions[] = {
    {"--bus", "ADDRESS", "a D-Bus address such as unix:path=/tmp/bus",
     "the bus to be on; without it, one of its own is started",
     [](Options& o, std::string_view v) { return setText(o.bus, v); }},
    {"--device", "DEVICE", kWantedDevice,
     "a device near the computer: ADDRESS=NAME or ADDRESS=NAME=CLASS, where\n"
     "CLASS is phone, the default, tablet, computer, headset, keyboard or a\n"
     "number such as 0x5A020C; may be given for several",
     addDevice},
    {"--log", "FILE", "a file", "write one JSON line for each thing that happens",
     [](Options& o, std::string_view v) { return setText(o.log, v); }},
    {"--ready-file", "FILE", "a file",
     "make this file, with the bus's address in it, once the stack can be\n"
     "used; it is removed at the end",
     [](Options& o, std::string_view v) { return setText(o.readyFile, v); }},
    {"--control", "FILE", "a file",
     "make this FIFO and read lines from it that change the surroundings;\n"
     "it is removed at the end",
     [](Options& o, std::string_view v) { return setText(o.control, v); }},
};

CommandLine<Options> commandLine() {
    return {"virtual_stack", kOptions};
}

} // namespace

std::optional<DeviceSettings> parseDevice(std::string_view text) {
    const std::size_t name = text.find('=');
    const auto address = phone::parseAddress(text.substr(0, name));
    if (!address || name == std::string_view::npos)
        return std::nullopt;
    const std::string_view rest = text.substr(name + 1);
    const std::size_t end = rest.find('=');
    DeviceSettings device{.address = phone::toText(*address),
                          .name = std::string(rest.substr(0, end))};
    if (end != std::string_view::npos) {
        const auto deviceClass = parseClass(rest.substr(end + 1));
        if (!deviceClass)
            return std::nullopt;
        device.deviceClass = *deviceClass;
    }
    const bool isNamed = !device.name.empty() && device.name.size() <= kMaxName;
    return isNamed ? std::optional(device) : std::nullopt;
}

phone::Parsed<Options> parseOptions(std::span<const char* const> arguments) {
    return commandLine().parse(arguments);
}

std::string helpText() {
    return "Usage: virtual_stack [OPTION]...\n"
           "Stands where BlueZ and the devices around the computer are: an org.bluez on a bus, "
           "without\n"
           "a radio. Ctrl-C or SIGTERM ends it.\n"
           "\n" +
           commandLine().help() +
           "\n"
           "The FIFO takes these lines:\n"
           "  ask NAME          the device asks to pair\n"
           "  cancel            no device asks any longer\n"
           "  radio on|off      switch the adapter\n"
           "  add DEVICE        a device comes, as with --device\n"
           "  remove NAME       a device goes\n"
           "\n"
           "Exit status: 0 after a signal, 1 when the stack can't start, when its bus goes away "
           "or\n"
           "a file can't be written, 2 for a wrong command line.\n";
}

} // namespace orbelantine::stack
