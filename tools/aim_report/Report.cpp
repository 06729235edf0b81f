#include "tools/aim_report/Report.h"

#include "tools/aim_report/Errors.h"
#include "tools/aim_report/Table.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <sstream>

namespace orbelantine::aim {

namespace {

constexpr const char* kUnits =
    "How far from its target a click's press or a drag's release lands, in pixels of the phone, "
    "and\n"
    "the farthest that a drag's cursor was from the finger on the way, as a median. A paced drag\n"
    "raises a place every 45 ms at the most, any other every 16.\n";

constexpr const char* kRemarks =
    "One count moves a scaled screen by up to 6.5 logical units, so each leg of a move adds to "
    "the\n"
    "error. Unscaled drags that aren't paced err by contract: the reversal follows the axis of "
    "the\n"
    "signed maximum, and a turned phone's cursor is reckoned by what was sent.\n";

/// What a line of a table takes.
struct Selection {
    Gesture gesture;
    bool scaled;
    int firstRotation = 1;
    int lastRotation = kRotations;
    /// 0 for any number.
    unsigned legs = 0;
    /// kDirections.size() for any.
    std::size_t direction = kDirections.size();

    [[nodiscard]] bool takes(const Setup& setup) const {
        return setup.scaled == scaled && setup.rotation >= firstRotation &&
               setup.rotation <= lastRotation;
    }

    [[nodiscard]] bool takes(const Trial& trial) const {
        return trial.gesture == gesture && (legs == 0 || trial.legs == legs) &&
               (direction == kDirections.size() || trial.direction == direction);
    }

    [[nodiscard]] std::vector<Trial> from(std::span<const Run> runs) const {
        std::vector<Trial> taken;
        for (const Run& run : runs)
            if (takes(run.setup))
                std::ranges::copy_if(run.trials, std::back_inserter(taken),
                                     [this](const Trial& trial) { return takes(trial); });
        return taken;
    }
};

constexpr Selection kSummary[] = {
    {.gesture = Gesture::Click, .scaled = false},
    {.gesture = Gesture::Click, .scaled = true, .legs = 1},
    {.gesture = Gesture::Click, .scaled = true, .legs = 2},
    {.gesture = Gesture::Click, .scaled = true, .legs = 3},
    {.gesture = Gesture::Click, .scaled = true, .legs = 4},
    {.gesture = Gesture::Drag, .scaled = false, .lastRotation = 1},
    {.gesture = Gesture::Drag, .scaled = false, .firstRotation = 2},
    {.gesture = Gesture::PacedDrag, .scaled = false},
    {.gesture = Gesture::Drag, .scaled = true},
    {.gesture = Gesture::PacedDrag, .scaled = true},
};

const char* viewportOf(bool scaled) {
    return scaled ? "scaled" : "unscaled";
}

std::string rotationsOf(const Selection& selection) {
    std::string text = std::to_string(selection.firstRotation);
    if (selection.lastRotation != selection.firstRotation)
        text += " to " + std::to_string(selection.lastRotation);
    return text;
}

std::string gestureOf(const Selection& selection) {
    std::string text = nameOf(selection.gesture);
    if (selection.legs != 0)
        text += ", " + std::to_string(selection.legs) + (selection.legs == 1 ? " leg" : " legs");
    if (selection.direction < kDirections.size())
        text += std::string(" ") + kDirections[selection.direction].name;
    return text;
}

std::vector<std::string> lineOf(const Selection& selection, const Errors& errors) {
    const std::optional<double> path = errors.path();
    return {gestureOf(selection),
            viewportOf(selection.scaled),
            rotationsOf(selection),
            errors.verdict(),
            std::to_string(errors.count()),
            oneDigit(errors.within(3)) + " %",
            oneDigit(errors.within(8)) + " %",
            oneDigit(errors.median()),
            oneDigit(errors.worst()),
            path ? oneDigit(*path) : "-"};
}

std::string tableOf(std::span<const Selection> selections, std::span<const Run> runs) {
    Table table(4);
    table.add({"gesture", "viewport", "rotation", "verdict", "trials", "within 3 px", "within 8 px",
               "median", "worst", "from finger"});
    for (const Selection& selection : selections)
        if (const std::vector<Trial> trials = selection.from(runs); !trials.empty())
            table.add(lineOf(selection, Errors(trials)));
    return table.text();
}

/// Each gesture on each phone, and each direction of drags.
std::vector<Selection> everySelection() {
    std::vector<Selection> all;
    for (const bool scaled : {false, true})
        for (int rotation = 1; rotation <= kRotations; ++rotation) {
            all.push_back({Gesture::Click, scaled, rotation, rotation});
            for (const Gesture gesture : {Gesture::Drag, Gesture::PacedDrag})
                for (std::size_t i = 0; i < kDirections.size(); ++i)
                    all.push_back({gesture, scaled, rotation, rotation, 0, i});
        }
    return all;
}

} // namespace

std::string summaryOf(std::span<const Run> runs) {
    return kUnits + ('\n' + tableOf(kSummary, runs)) + '\n' + kRemarks;
}

std::string wholeTableOf(std::span<const Run> runs) {
    return tableOf(everySelection(), runs);
}

std::string csvOf(std::span<const Run> runs) {
    std::ostringstream out;
    out << "gesture,rotation,viewport,direction,legs,target_x,target_y,landed_x,landed_y,error,"
           "from_finger\n";
    for (const auto& [setup, trials] : runs)
        for (const Trial& trial : trials)
            out << nameOf(trial.gesture) << ',' << setup.rotation << ',' << viewportOf(setup.scaled)
                << ',' << (trial.path ? kDirections[trial.direction].name : "") << ',' << trial.legs
                << ',' << trial.target.x << ',' << trial.target.y << ',' << trial.landed.x << ','
                << trial.landed.y << ',' << trial.error() << ',' << trial.path.value_or(0) << '\n';
    return out.str();
}

} // namespace orbelantine::aim
