#include "tools/aim_report/Report.h"

#include "tools/aim_report/Table.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace orbelantine::aim {

namespace {

constexpr const char* kErrorHeadings[] = {"trials", "within 3 px", "within 8 px", "median px",
                                          "worst px"};

constexpr const char* kClickRemark =
    "One count moves a scaled screen by up to 6.5 logical units: nearer than that is chance.\n";

constexpr const char* kDragRemark =
    "By contract the reversal follows the axis of the signed maximum, so unscaled drags to the\n"
    "left or up overshoot; the source reckons in whole pixels, and on a turned screen with the\n"
    "deltas that it sent.\n";

double partWithin(const std::vector<double>& sorted, double tolerance) {
    const auto end = std::ranges::upper_bound(sorted, tolerance);
    return 100.0 * static_cast<double>(end - sorted.begin()) / static_cast<double>(sorted.size());
}

const char* viewportOf(const Setup& setup) {
    return setup.scaled ? "scaled" : "unscaled";
}

void addHeading(Table& table, std::vector<std::string> cells) {
    cells.insert(cells.end(), std::begin(kErrorHeadings), std::end(kErrorHeadings));
    table.add(std::move(cells));
}

void addErrors(Table& table, std::vector<std::string> cells, std::span<const Trial> trials) {
    const Errors errors(trials);
    cells.push_back(std::to_string(trials.size()));
    for (const double part : {errors.within3, errors.within8})
        cells.push_back(oneDigit(part) + " %");
    for (const double pixels : {errors.median, errors.worst})
        cells.push_back(oneDigit(pixels));
    table.add(std::move(cells));
}

std::string clickTable(std::span<const Run> runs) {
    Table table(2);
    addHeading(table, {"rotation", "viewport"});
    for (const Run& run : runs)
        addErrors(table, {std::to_string(run.setup.rotation), viewportOf(run.setup)}, run.clicks);
    return table.text();
}

std::string dragTable(std::span<const Run> runs) {
    Table table(3);
    addHeading(table, {"rotation", "viewport", "direction"});
    for (const Run& run : runs)
        for (std::size_t i = 0; i < kDirections.size(); ++i) {
            std::vector<Trial> trials;
            std::ranges::copy_if(run.drags, std::back_inserter(trials),
                                 [&](const Trial& trial) { return trial.direction == i; });
            if (!trials.empty())
                addErrors(table,
                          {std::to_string(run.setup.rotation), viewportOf(run.setup),
                           kDirections[i].name},
                          trials);
        }
    return table.text();
}

void writeTrials(std::ostream& out, const Setup& setup, std::span<const Trial> trials, bool drags) {
    for (const Trial& trial : trials)
        out << (drags ? "drag," : "click,") << setup.rotation << ',' << viewportOf(setup) << ','
            << (drags ? kDirections[trial.direction].name : "") << ',' << trial.target.x << ','
            << trial.target.y << ',' << trial.landed.x << ',' << trial.landed.y << ','
            << trial.error() << '\n';
}

} // namespace

Errors::Errors(std::span<const Trial> trials) {
    std::vector<double> sorted;
    for (const Trial& trial : trials)
        sorted.push_back(trial.error());
    std::ranges::sort(sorted);
    within3 = partWithin(sorted, 3);
    within8 = partWithin(sorted, 8);
    median = (sorted[(sorted.size() - 1) / 2] + sorted[sorted.size() / 2]) / 2;
    worst = sorted.back();
}

std::string reportOf(std::span<const Run> runs) {
    return "Clicks: where the press lands\n\n" + clickTable(runs) + "\n" + kClickRemark +
           "\nDrags in steps of 16 ms: where the release lands\n\n" + dragTable(runs) + "\n" +
           kDragRemark;
}

std::string csvOf(std::span<const Run> runs) {
    std::ostringstream out;
    out << "kind,rotation,viewport,direction,target_x,target_y,landed_x,landed_y,error\n";
    for (const Run& run : runs) {
        writeTrials(out, run.setup, run.clicks, false);
        writeTrials(out, run.setup, run.drags, true);
    }
    return out.str();
}

} // namespace orbelantine::aim
