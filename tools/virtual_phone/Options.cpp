#include "tools/virtual_phone/Options.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <string_view>

namespace orbelantine::phone {

namespace {

using std::chrono::milliseconds;

constexpr int kMinScreen = 100;
constexpr int kMaxScreen = 10'000;
constexpr int kMaxPauseMs = 600'000;
constexpr std::size_t kMaxName = 64;

template <typename T>
bool parseNumber(std::string_view text, T low, T high, T& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && number >= low &&
           number <= high;
}

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

bool setRefused(Options& options, std::string_view value) {
    options.faults.refuseControl |= value == "control";
    options.faults.refuseInterrupt |= value == "interrupt";
    return value == "control" || value == "interrupt";
}

bool setVersion(Options& options, std::string_view value) {
    using Limits = std::numeric_limits<std::int16_t>;
    return parseNumber(value, Limits::min(), Limits::max(), options.faults.driverVersion);
}

bool setVanishAfter(Options& options, std::string_view value) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    return parseNumber(value, std::uint64_t{1}, kMost, options.faults.vanishAfter.emplace());
}

/// An option of the command line. `value` is its placeholder in the help, null for a switch;
/// `wants` ends the sentence "--option wants ..."; `set` answers whether the value will do.
struct Option {
    std::string_view name;
    const char* value;
    const char* wants;
    const char* help;
    bool (*set)(Options&, std::string_view value);
};

constexpr Option kOptions[] = {
    {"--devices", "DIR", "a folder",
     "folder of the devices; default $ORBELANTINE_DEVICE_DIR, else\n"
     "$XDG_RUNTIME_DIR/orbelantine/devices, else /tmp/orbelantine-<uid>/devices",
     [](Options& o, std::string_view v) { return setText(o.devices, v); }},
    {"--address", "ADDRESS", "an address such as 00:11:22:33:44:55",
     "the phone's Bluetooth address; default 00:11:22:33:44:55", setAddress},
    {"--screen", "WxH", "a width and a height from 100 to 10000, such as 1080x2340",
     "the screen's size in pixels; default 1080x2340", setScreen},
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
    {"--refuse", "CHANNEL", "control or interrupt",
     "fail connect requests for the control or the interrupt channel;\nmay be given for both",
     setRefused},
    {"--late", "MS", "milliseconds from 0 to 600000", "reply to each request MS milliseconds late",
     [](Options& o, std::string_view v) { return parsePause(v, o.faults.late); }},
    {"--version", "N", "a number from -32768 to 32767", "the driver's version; default 4",
     setVersion},
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

UsageError usageError(const std::string& text) {
    return {"virtual_phone: " + text + "; virtual_phone --help lists the options"};
}

/// The arguments and how many of them have been read.
class ArgumentReader {
  public:
    explicit ArgumentReader(std::span<const char* const> arguments)
        : mArguments(arguments) {}

    [[nodiscard]] bool atEnd() const { return mArguments.empty(); }

    std::string_view next() {
        const std::string_view argument = mArguments.front();
        mArguments = mArguments.subspan(1);
        return argument;
    }

  private:
    std::span<const char* const> mArguments;
};

/// Applies one option; nothing, or what is wrong with it.
std::optional<UsageError> apply(std::string_view argument, ArgumentReader& rest, Options& options) {
    const std::size_t equals = argument.find('=');
    const bool attached = equals != std::string_view::npos;
    const std::string name(argument.substr(0, equals));
    const auto* option = std::ranges::find(kOptions, name, &Option::name);
    if (option == std::end(kOptions))
        return usageError("unknown option '" + name + "'");
    if (option->value == nullptr && attached)
        return usageError(name + " takes no value");
    if (option->value != nullptr && !attached && rest.atEnd())
        return usageError(name + " wants " + option->wants + " behind it");
    std::string_view value;
    if (option->value != nullptr)
        value = attached ? argument.substr(equals + 1) : rest.next();
    if (!option->set(options, value))
        return usageError(name + " wants " + option->wants + ", not '" + std::string(value) + "'");
    return std::nullopt;
}

/// One option's lines of the help, its explanation in a column of its own.
std::string helpLines(const Option& option) {
    constexpr std::size_t kColumn = 26;
    std::string lines = "  " + std::string(option.name);
    if (option.value != nullptr)
        lines += std::string(" ") + option.value;
    lines.resize(std::max(lines.size() + 1, kColumn), ' ');
    for (const char c : std::string_view(option.help)) {
        lines += c;
        if (c == '\n')
            lines.append(kColumn, ' ');
    }
    return lines + "\n";
}

} // namespace

std::variant<Options, HelpWanted, UsageError> parseOptions(std::span<const char* const> arguments) {
    Options options;
    for (ArgumentReader rest(arguments); !rest.atEnd();) {
        const std::string_view argument = rest.next();
        if (argument == "--help" || argument == "-h")
            return HelpWanted{};
        if (std::optional<UsageError> error = apply(argument, rest, options))
            return *error;
    }
    if (options.faults.returnAfter && !options.faults.vanishAfter)
        return usageError("--return-after needs --vanish-after");
    return options;
}

std::string helpText() {
    std::string text =
        "Usage: virtual_phone [OPTION]...\n"
        "Stands where the private driver and the phone are: the library links to it through a\n"
        "local socket, and it shows what a phone would have received. Ctrl-C or SIGTERM ends it.\n"
        "\n";
    for (const Option& option : kOptions)
        text += helpLines(option);
    return text +
           "  --help                  show this text\n"
           "\n"
           "Exit status: 0 after a session, 1 when the phone can't start or a file can't be\n"
           "written, 2 for a wrong command line.\n";
}

} // namespace orbelantine::phone
