#include "tools/aim_report/Options.h"

#include "tools/program/Parse.h"

namespace orbelantine::aim {

namespace {

using phone::parseNumber;

constexpr int kMostCells = 200;
constexpr std::string_view kScaledSuffix = "-scaled";

bool setText(std::string& target, std::string_view value) {
    target = value;
    return !value.empty();
}

bool setGrid(Options& options, std::string_view value) {
    const std::size_t x = value.find('x');
    return x != std::string_view::npos &&
           parseNumber(value.substr(0, x), 1, kMostCells, options.grid.columns) &&
           parseNumber(value.substr(x + 1), 1, kMostCells, options.grid.rows);
}

bool setDrawn(Options& options, std::string_view value) {
    options.drawn.scaled = value.ends_with(kScaledSuffix);
    if (options.drawn.scaled)
        value.remove_suffix(kScaledSuffix.size());
    return parseNumber(value, 1, 4, options.drawn.rotation);
}

constexpr phone::CommandOption<Options> kOptions[] = {
    {"--grid", "CxR", "columns and rows from 1 to 200, such as 20x40",
     "cells to click on an upright phone; default 20x40", setGrid},
    {"--all", nullptr, nullptr, "show each phone and each direction of drags too",
     [](Options& o, std::string_view) { return o.all = true; }},
    {"--csv", "FILE", "a file", "write one line for each click and drag",
     [](Options& o, std::string_view v) { return setText(o.csv, v); }},
    {"--picture", "FILE", "a file",
     "draw targets, paths and hits of one run as an SVG picture; it\n"
     "clicks at most 5x9 cells, so that each can be told apart",
     [](Options& o, std::string_view v) { return setText(o.picture, v); }},
    {"--run", "RUN", "a rotation from 1 to 4, with -scaled behind it or not",
     "the run to draw, such as 2 or 3-scaled; default 1", setDrawn},
};

phone::CommandLine<Options> commandLine() {
    return {"aim_report", kOptions};
}

} // namespace

phone::Parsed<Options> parseOptions(std::span<const char* const> arguments) {
    return commandLine().parse(arguments);
}

std::string helpText() {
    return "Usage: aim_report [OPTION]...\n"
           "Clicks and drags on virtual phones through the relative mouse source, and tells how\n"
           "far from their targets they land and how well drags follow the finger.\n"
           "\n" +
           commandLine().help() +
           "\n"
           "Exit status: 0 when the report is done, 1 when the source does not answer or a file\n"
           "can't be written, 2 for a wrong command line.\n";
}

} // namespace orbelantine::aim
