#pragma once

#include "core/common/log/Log.h"
#include "tools/program/CommandLine.h"

#include <cstddef>
#include <exception>
#include <iostream>
#include <span>
#include <string>
#include <variant>

namespace orbelantine::phone {

/// The arguments behind the program's name.
inline std::span<const char* const> argumentsOf(int argc, char** argv) {
    return std::span<const char* const>(argv, static_cast<std::size_t>(argc)).subspan(1);
}

/// What a program does with its command line: help is printed, an error is told and gives status
/// 2, and options go to `run`, which gives the status.
template <class Options, class Run>
int runParsed(const std::variant<Options, HelpWanted, UsageError>& parsed, const std::string& help,
              Run run) {
    if (const auto* error = std::get_if<UsageError>(&parsed)) {
        std::cerr << error->message << '\n';
        return 2;
    }
    if (std::holds_alternative<HelpWanted>(parsed)) {
        std::cout << help;
        return 0;
    }
    // What a tool has to tell is on its terminal.
    set_disable_file_log(true);
    return run(std::get<Options>(parsed));
}

/// The exit status of a job: what it throws is told under the program's name and gives 1.
template <class Job>
int statusOf(const std::string& program, Job job) {
    try {
        job();
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << program << ": " << failure.what() << '\n';
        return 1;
    }
}

} // namespace orbelantine::phone
