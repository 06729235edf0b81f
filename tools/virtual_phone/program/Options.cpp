#include "tools/virtual_phone/program/Options.h"

#include "tools/program/Parse.h"

#include <limits>
#include <string_view>

namespace orbelantine::phone {

namespace {

using std::chrono::milliseconds;

constexpr int kMaxPauseMs = 600'000;
constexpr std::size_t kMaxName = 64;

bool parsePause(std::string_view text, milliseconds& pause) {
    int ms = 0;
    if (!parseNumber(text, 0, kMaxPauseMs, ms))
        return false;
    pause = milliseconds(ms);
    return true;
}

bool setText(std::string& target, std::string_view value) {
    target = value;
    return !value.empty();
}

bool setAddress(Options& options, std::string_view value) {
    const std::optional<Address> address = parseAddress(value);
    options.address = address.value_or(options.address);
    return address.has_value();
}

bool setScreen(Options& options, std::string_view value) {
    const std::size_t x = value.find('x');
    return x != std::string_view::npos &&
           parseNumber(value.substr(0, x), kMinScreen, kMaxScreen, options.screen.width) &&
           parseNumber(value.substr(x + 1), kMinScreen, kMaxScreen, options.screen.height);
}

bool setScale(Options& options, std::string_view value) {
    return parseNumber(value, kMinScale, kMaxScale, options.screen.scale);
}

bool setRotation(Options& options, std::string_view value) {
    return parseNumber(value, 1, 4, options.screen.rotation);
}

bool setAcceleration(Options& options, std::string_view value) {
    const std::optional<Acceleration> acceleration = parseAcceleration(value);
    options.acceleration = acceleration.value_or(options.acceleration);
    return acceleration.has_value();
}

bool setRefused(Options& options, std::string_view value) {
    options.faults.refuseControl |= value == "control";
    options.faults.refuseInterrupt |= value == "interrupt";
    return value == "control" || value == "interrupt";
}

bool setDriverVersion(Options& options, std::string_view value) {
    using Limits = std::numeric_limits<std::int16_t>;
    return parseNumber(value, Limits::min(), Limits::max(), options.faults.driverVersion);
}

bool setVanishAfter(Options& options, std::string_view value) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    return parseNumber(value, std::uint64_t{1}, kMost, options.faults.vanishAfter.emplace());
}

constexpr CommandOption<Options> kOptions[] = {
    {"--devices", "DIR", "a folder",
     "folder of the devices; default $ORBELANTINE_DEVICE_DIR, else\n"
     "$XDG_RUNTIME_DIR/orbelantine/devices, else /tmp/orbelantine-<uid>/devices",
     [](Options& o, std::string_view v) { return setText(o.devices, v); }},
    {"--address", "ADDRESS", "an address such as 00:11:22:33:44:55",
     "the phone's Bluetooth address; default 00:11:22:33:44:55", setAddress},
    {"--screen", "WxH", "a width and a height from 100 to 10000, such as 1080x2340",
     "the screen's size in pixels, as displayed; default 1080x2340", setScreen},
    {"--scale", "S", "a number from 0.1 to 10", "the viewport's scale; default 1", setScale},
    {"--rotation", "N", "1, 2, 3 or 4",
     "how the screen is turned: 1 is natural, the default, 2 to 4 are\nits quarter turns",
     setRotation},
    {"--acceleration", "KIND", "none, android or curve",
     "what the phone makes of relative deltas: none, the default, is a\n"
     "pixel for each count; android goes by their speed; curve by their\n"
     "length, as phones with a scaled viewport do",
     setAcceleration},
    {"--name", "NAME", "1 to 64 bytes", "the phone's name; default \"Virtual phone\"",
     [](Options& o, std::string_view v) { return v.size() <= kMaxName && setText(o.name, v); }},
    {"--log", "FILE", "a file", "write one JSON line for each thing received",
     [](Options& o, std::string_view v) { return setText(o.log, v); }},
    {"--picture", "FILE", "a file", "draw the session as an SVG picture when it ends",
     [](Options& o, std::string_view v) { return setText(o.picture, v); }},
    {"--ready-file", "FILE", "a file",
     "make this file, with the socket's path in it, once the phone is\n"
     "listening; it is removed at the end",
     [](Options& o, std::string_view v) { return setText(o.readyFile, v); }},
    {"--control", "FILE", "a file",
     "make this FIFO and read lines from it that change the screen, the\n"
     "acceleration or the place to click; it is removed at the end",
     [](Options& o, std::string_view v) { return setText(o.control, v); }},
    {"--refuse", "CHANNEL", "control or interrupt",
     "fail connect requests for the control or the interrupt channel;\nmay be given for both",
     setRefused},
    {"--late", "MS", "milliseconds from 0 to 600000", "reply to each request MS milliseconds late",
     [](Options& o, std::string_view v) { return parsePause(v, o.faults.late); }},
    {"--driver-version", "N", "a number from -32768 to 32767",
     "the version that the driver tells; default 4", setDriverVersion},
    {"--vanish-after", "N", "a number of reports from 1",
     "after N reports hang up, remove the device and end", setVanishAfter},
    {"--return-after", "MS", "milliseconds from 0 to 600000",
     "with --vanish-after: come back MS milliseconds later, to stay",
     [](Options& o, std::string_view v) { return parsePause(v, o.faults.returnAfter.emplace()); }},
    {"--keep-after-unplug", nullptr, nullptr, "keep the channels when the host unplugs",
     [](Options& o, std::string_view) { return o.faults.keepAfterUnplug = true; }},
    {"--garbage", nullptr, nullptr,
     "reply in turn with a packet too short, no output, and too much output",
     [](Options& o, std::string_view) { return o.faults.garbage = true; }},
};

CommandLine<Options> commandLine() {
    return {"virtual_phone", kOptions};
}

} // namespace

Parsed<Options> parseOptions(std::span<const char* const> arguments) {
    auto parsed = commandLine().parse(arguments);
    if (const auto* options = std::get_if<Options>(&parsed))
        if (options->faults.returnAfter && !options->faults.vanishAfter)
            return commandLine().error("--return-after needs --vanish-after");
    return parsed;
}

std::string helpText() {
    return "Usage: virtual_phone [OPTION]...\n"
           "Stands where the private driver and the phone are: the library links to it through a\n"
           "local socket, and it shows what a phone would have received. Ctrl-C or SIGTERM ends "
           "it.\n"
           "\n" +
           commandLine().help() +
           "\n"
           "Exit status: 0 after a session, 1 when the phone can't start or a file can't be\n"
           "written, 2 for a wrong command line.\n";
}

} // namespace orbelantine::phone
