#include "tools/aim_report/Table.h"
#include "tools/program/Parse.h"
#include "tools/program/ProgramMain.h"
#include "tools/road_latency/Receiver.h"
#include "tools/road_latency/Roads.h"

#include <sched.h>

#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orbelantine::latency {

namespace {

using phone::parseNumber;

constexpr unsigned kMostEvents = 100'000'000;
constexpr double kHighestLimit = 1000;
constexpr std::uint64_t kLongestIdleMs = 1'000'000'000;
/// Events in a row on one road, before the other has its turn.
constexpr unsigned kBlock = 500;

struct Options {
    unsigned events = 100'000;
    double limit = 1.5;
    std::uint64_t idleMs = 60'000;
    bool spread = false;
    bool window = false;
};

constexpr phone::CommandOption<Options> kOptions[] = {
    {"--events", "N", "a number from 1 to 100000000", "events on each road; default 100000",
     [](Options& o, std::string_view v) { return parseNumber(v, 1U, kMostEvents, o.events); }},
    {"--limit", "RATIO", "a number from 0 to 1000",
     "the most that the median may be, as a multiple of the\nfloor's; default 1.5",
     [](Options& o, std::string_view v) { return parseNumber(v, 0.0, kHighestLimit, o.limit); }},
    {"--idle", "MS", "a number from 0 to 1000000000",
     "the link's idle timeout; 0 for none, default 60000",
     [](Options& o, std::string_view v) {
         return parseNumber(v, std::uint64_t{0}, kLongestIdleMs, o.idleMs);
     }},
    {"--spread", nullptr, nullptr,
     "let the system place the threads; without it all share one\n"
     "processor, since where they wake each other costs more than\nthe road",
     [](Options& o, std::string_view) { return o.spread = true; }},
    {"--window", nullptr, nullptr,
     "begin with the X server: key events of a window, beside\na client that only gets them and "
     "writes",
     [](Options& o, std::string_view) { return o.window = true; }},
};

phone::CommandLine<Options> commandLine() {
    return {"road_latency", kOptions};
}

std::string helpText() {
    return "Usage: road_latency [OPTION]...\n"
           "Measures the time from a key event on a surface until its report is at the phone's\n"
           "socket, beside the floor: as many hops between threads, and one write. The events are\n"
           "the surface's own, or with --window those of an X server.\n"
           "\n" +
           commandLine().help() +
           "\n"
           "Exit status: 0, 1 when the median is above the limit or an event is lost, 2 for a\n"
           "wrong command line.\n";
}

/// In microseconds.
using Times = std::vector<double>;

/// One event at a time, each once the one before it has come.
template <class Road>
void measure(Road& road, unsigned events, Receiver& receiver, std::uint64_t& received,
             Times& times) {
    road.begin();
    for (unsigned i = 0; i < events; ++i) {
        const Clock::time_point raised = Clock::now();
        road.raise();
        const std::chrono::duration<double, std::micro> took =
            receiver.awaitReport(++received) - raised;
        times.push_back(took.count());
    }
}

/// Of sorted times.
double percentile(const Times& times, unsigned percent) {
    return times[(times.size() - 1) * percent / 100];
}

std::string text(double number, int digits) {
    std::ostringstream out;
    out << std::fixed << std::setprecision(digits) << number;
    return out.str();
}

std::string tableOf(const Times& floor, const Times& road) {
    aim::Table table(1);
    table.add({"microseconds", "p50", "p90", "p99"});
    constexpr unsigned kPercents[] = {50, 90, 99};
    std::vector<std::string> lines[] = {{"floor"}, {"road"}, {"ratio"}};
    for (const unsigned percent : kPercents) {
        const double least = percentile(floor, percent);
        const double ours = percentile(road, percent);
        lines[0].push_back(text(least, 1));
        lines[1].push_back(text(ours, 1));
        lines[2].push_back(text(ours / least, 2));
    }
    for (auto& line : lines)
        table.add(std::move(line));
    return table.text();
}

/// Threads made from here on share the present processor.
void stayOnOneProcessor() {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<std::size_t>(std::max(0, ::sched_getcpu())), &one);
    if (::sched_setaffinity(0, sizeof(one), &one) != 0)
        throw std::runtime_error("cannot stay on one processor: try --spread");
}

/// Whether the road keeps to the limit.
template <class Road, class Least>
bool reportOf(const Options& options) {
    Receiver receiver;
    Road road(options.idleMs);
    Least floor(receiver);
    std::uint64_t received = 0;
    Times ofRoad;
    Times ofFloor;
    for (unsigned done = 0; done < options.events; done += kBlock) {
        const unsigned block = std::min(kBlock, options.events - done);
        measure(floor, block, receiver, received, ofFloor);
        measure(road, block, receiver, received, ofRoad);
    }
    std::ranges::sort(ofFloor);
    std::ranges::sort(ofRoad);
    std::cout << options.events << " key events on each road, in turns of " << kBlock << "\n"
              << tableOf(ofFloor, ofRoad) << std::flush;
    return percentile(ofRoad, 50) <= options.limit * percentile(ofFloor, 50);
}

bool report(const Options& options) {
    if (!options.spread)
        stayOnOneProcessor();
    return options.window ? reportOf<WindowRoad, WindowFloor>(options)
                          : reportOf<WholeRoad, Floor>(options);
}

int run(const Options& options) {
    return phone::statusOf("road_latency", [&] {
        if (!report(options))
            throw std::runtime_error("the median is above " + text(options.limit, 2) +
                                     " times the floor's");
    });
}

} // namespace

} // namespace orbelantine::latency

int main(int argc, char** argv) {
    using namespace orbelantine;
    return phone::runParsed(latency::commandLine().parse(phone::argumentsOf(argc, argv)),
                            latency::helpText(), latency::run);
}
