#include "tools/l2cap_bridge/Options.h"

#include <optional>
#include <string_view>

namespace orbelantine::bridge {

namespace {

using phone::CommandLine;
using phone::CommandOption;

constexpr std::size_t kMaxName = 64;

bool setText(std::string& target, std::string_view value) {
    target = value;
    return !value.empty();
}

bool setAddress(Options& options, std::string_view value) {
    const std::optional<phone::Address> address = phone::parseAddress(value);
    options.address = address.value_or(options.address);
    options.hasAddress = address.has_value();
    return options.hasAddress;
}

constexpr CommandOption<Options> kOptions[] = {
    {"--address", "ADDRESS", "an address such as 00:11:22:33:44:55",
     "the phone's Bluetooth address; has to be given", setAddress},
    {"--devices", "DIR", "a folder",
     "folder of the devices; default $ORBELANTINE_DEVICE_DIR, else\n"
     "$XDG_RUNTIME_DIR/orbelantine/devices, else /tmp/orbelantine-<uid>/devices",
     [](Options& o, std::string_view v) { return setText(o.devices, v); }},
    {"--name", "NAME", "1 to 64 bytes",
     "the service's name in the record; default \"OrbelantineHIDDevice\"",
     [](Options& o, std::string_view v) { return v.size() <= kMaxName && setText(o.name, v); }},
    {"--log", "FILE", "a file", "write one JSON line for each thing that happens",
     [](Options& o, std::string_view v) { return setText(o.log, v); }},
    {"--no-record", nullptr, nullptr, "publish no service record, and do without D-Bus",
     [](Options& o, std::string_view) {
         o.publishRecord = false;
         return true;
     }},
    {"--bus", "ADDRESS", "a D-Bus address such as unix:path=/run/dbus/system_bus_socket",
     "the bus that BlueZ is on; default the system bus",
     [](Options& o, std::string_view v) { return setText(o.bus, v); }},
};

CommandLine<Options> commandLine() {
    return {"l2cap_bridge", kOptions};
}

} // namespace

phone::Parsed<Options> parseOptions(std::span<const char* const> arguments) {
    auto parsed = commandLine().parse(arguments);
    if (const auto* options = std::get_if<Options>(&parsed))
        if (!options->hasAddress)
            return commandLine().error("--address is missing: give the phone's, which "
                                       "\"bluetoothctl devices\" tells");
    return parsed;
}

std::string helpText() {
    return "Usage: l2cap_bridge --address ADDRESS [OPTION]...\n"
           "Stands where the private driver is: the library links to it through a local socket, "
           "and\n"
           "it carries the channels to a phone over Bluetooth. Ctrl-C or SIGTERM ends it.\n"
           "\n" +
           commandLine().help() +
           "\n"
           "Exit status: 0 after a signal, 1 when the device can't be offered or the log can't be\n"
           "written, 2 for a wrong command line, 3 without Bluetooth or when the adapter goes\n"
           "away, 4 when the service record can't be published.\n";
}

} // namespace orbelantine::bridge
