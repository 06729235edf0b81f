#pragma once

#include "tools/program/Version.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace orbelantine::phone {

struct HelpWanted {};

struct VersionWanted {
    /// Program and version.
    std::string line;
};

/// One line that says what is wrong with the command line and what to do next.
struct UsageError {
    std::string message;
};

/// What a command line comes to.
template <class Options>
using Parsed = std::variant<Options, HelpWanted, VersionWanted, UsageError>;

/// An option that sets something in `Options`. `value` is its placeholder in the help, null for a
/// switch; `wants` ends the sentence "--option wants ..."; `set` answers whether the value will do.
template <class Options>
struct CommandOption {
    std::string_view name;
    const char* value;
    const char* wants;
    const char* help;
    bool (*set)(Options&, std::string_view value);
};

/// A program's command line: its options as a table, which outlives this. "--name value" and
/// "--name=value" both do, and the last of an option given twice counts.
template <class Options>
class CommandLine {
  public:
    using Option = CommandOption<Options>;

    CommandLine(std::string program, std::span<const Option> options)
        : mProgram(std::move(program))
        , mOptions(options) {}

    /// Reads the arguments behind the program's name.
    [[nodiscard]] Parsed<Options> parse(std::span<const char* const> arguments) const {
        Options options;
        while (!arguments.empty()) {
            const std::string_view argument = take(arguments);
            if (argument == "--help" || argument == "-h")
                return HelpWanted{};
            if (argument == "--version")
                return VersionWanted{mProgram + " (Orbelantine) " + version()};
            if (std::optional<UsageError> wrong = apply(argument, arguments, options))
                return *wrong;
        }
        return options;
    }

    [[nodiscard]] UsageError error(const std::string& text) const {
        return {mProgram + ": " + text + "; " + mProgram + " --help lists the options"};
    }

    /// The help's lines, with each explanation in a column of its own.
    [[nodiscard]] std::string help() const {
        std::string lines;
        for (const Option& option : mOptions)
            lines += helpOf(option);
        return lines + helpOf({"--help", nullptr, nullptr, "show this text", nullptr}) +
               helpOf({"--version", nullptr, nullptr, "show the program's version", nullptr});
    }

  private:
    using Arguments = std::span<const char* const>;

    static std::string_view take(Arguments& arguments) {
        const std::string_view argument = arguments.front();
        arguments = arguments.subspan(1);
        return argument;
    }

    /// Applies one option; nothing, or what is wrong with it.
    std::optional<UsageError> apply(std::string_view argument, Arguments& rest,
                                    Options& options) const {
        const std::size_t equals = argument.find('=');
        const bool attached = equals != std::string_view::npos;
        const std::string name(argument.substr(0, equals));
        const auto option = std::ranges::find(mOptions, name, &Option::name);
        if (option == mOptions.end())
            return error("unknown option '" + name + "'");
        if (option->value == nullptr && attached)
            return error(name + " takes no value");
        if (option->value != nullptr && !attached && rest.empty())
            return error(name + " wants " + option->wants + " behind it");
        std::string_view value;
        if (option->value != nullptr)
            value = attached ? argument.substr(equals + 1) : take(rest);
        if (!option->set(options, value))
            return error(name + " wants " + option->wants + ", not '" + std::string(value) + "'");
        return std::nullopt;
    }

    static std::string helpOf(const Option& option) {
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

    std::string mProgram;
    std::span<const Option> mOptions;
};

} // namespace orbelantine::phone
