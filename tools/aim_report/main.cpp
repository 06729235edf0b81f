#include "tools/aim_report/Errors.h"
#include "tools/aim_report/Options.h"
#include "tools/aim_report/Report.h"
#include "tools/aim_report/Table.h"
#include "tools/program/ProgramMain.h"
#include "tools/virtual_phone/picture/Picture.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>

namespace orbelantine::aim {

namespace {

constexpr Grid kDrawnGrid = {5, 9};

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::trunc | std::ios::binary);
    if (!(file << text << std::flush))
        throw std::runtime_error("cannot write " + path);
}

Run measure(const Setup& setup, Grid grid) {
    Rig rig(setup);
    Run run{setup, clickGrid(rig, grid)};
    for (const Pace pace : {Pace::Each, Pace::Paced})
        std::ranges::copy(dragAround(rig, pace), std::back_inserter(run.trials));
    return run;
}

std::vector<Run> measureAll(Grid grid) {
    std::vector<Run> runs;
    for (int rotation = 1; rotation <= kRotations; ++rotation)
        for (const bool scaled : {false, true})
            runs.push_back(measure({rotation, scaled}, grid));
    return runs;
}

std::string draw(const Setup& setup, Grid grid) {
    Rig rig(setup);
    const auto trials = clickGrid(
        rig, {std::min(grid.columns, kDrawnGrid.columns), std::min(grid.rows, kDrawnGrid.rows)});
    const std::string hits = oneDigit(Errors(trials).within(3)) + " % within 3 pixels";
    return phone::drawPicture("Rotation " + nameOf(setup), hits, rig.phone());
}

void report(const Options& options) {
    // That a file can't be written is said before the work, not after it.
    for (const std::string& path : {options.csv, options.picture})
        if (!path.empty())
            writeFile(path, "");
    const std::vector<Run> runs = measureAll(options.grid);
    std::cout << summaryOf(runs);
    if (options.all)
        std::cout << '\n' << wholeTableOf(runs);
    std::cout << std::flush;
    if (!options.csv.empty())
        writeFile(options.csv, csvOf(runs));
    if (!options.picture.empty())
        writeFile(options.picture, draw(options.drawn, options.grid));
}

int run(const Options& options) {
    return phone::statusOf("aim_report", [&] { report(options); });
}

} // namespace

} // namespace orbelantine::aim

int main(int argc, char** argv) {
    using namespace orbelantine;
    return phone::runParsed(aim::parseOptions(phone::argumentsOf(argc, argv)), aim::helpText(),
                            aim::run);
}
