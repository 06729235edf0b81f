#include "tools/aim_report/Table.h"
#include "tools/program/Parse.h"
#include "tools/program/ProgramMain.h"
#include "tools/soak/PeerStarts.h"
#include "tools/soak/PipeTalks.h"
#include "tools/soak/ProcessUse.h"
#include "tools/soak/Session.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace orbelantine::soak {

namespace {

using phone::parseNumber;

constexpr std::uint64_t kMost = 1'000'000'000;
/// The work is spread over so many rounds, each with its share of everything.
constexpr std::uint64_t kRounds = 1000;
/// The process has grown to its size by then.
constexpr std::uint64_t kWarmRounds = kRounds / 10;

struct Options {
    std::uint64_t events = 1'000'000;
    std::uint64_t cycles = 1000;
    std::uint64_t vanishings = 100;
    std::uint64_t starts = 1000;
    std::uint64_t talks = 10'000;
    /// What the allocator keeps differs a little from moment to moment.
    std::uint64_t growthKb = 1024;
};

template <std::uint64_t Options::*Number, std::uint64_t Least>
bool set(Options& options, std::string_view value) {
    return parseNumber(value, Least, kMost, options.*Number);
}

constexpr phone::CommandOption<Options> kOptions[] = {
    {"--events", "N", "a number from 2 to 1000000000",
     "events to send besides those that are lost; default 1000000", set<&Options::events, 2>},
    {"--cycles", "N", "a number from 0 to 1000000000",
     "times that the link sleeps and wakes; default 1000", set<&Options::cycles, 0>},
    {"--vanishings", "N", "a number from 0 to 1000000000",
     "times that the phone vanishes and returns; default 100", set<&Options::vanishings, 0>},
    {"--starts", "N", "a number from 0 to 1000000000",
     "starts and stops of the peer manager, each during a discovery;\ndefault 1000",
     set<&Options::starts, 0>},
    {"--talks", "N", "a number from 0 to 1000000000",
     "connections of a client to a pipe's server; default 10000", set<&Options::talks, 0>},
    {"--growth", "KB", "a number from 0 to 1000000000",
     "memory that the process may gain after a tenth of the work;\ndefault 1024",
     set<&Options::growthKb, 0>},
};

phone::CommandLine<Options> commandLine() {
    return {"soak", kOptions};
}

std::string helpText() {
    return "Usage: soak [OPTION]...\n"
           "Runs a long session with a virtual phone: the link sleeps and wakes, the phone goes\n"
           "and returns; then starts and stops the peer manager on a virtual stack; then connects\n"
           "to a pipe and closes. Counts what is sent, received and discarded, and what the "
           "process\n"
           "holds after a tenth of the work and at the end.\n"
           "\n" +
           commandLine().help() +
           "\n"
           "Exit status: 0, 1 when an event is lost or comes twice or the process has grown, 2\n"
           "for a wrong command line.\n";
}

std::uint64_t shareOf(std::uint64_t all, std::uint64_t round) {
    return all * (round + 1) / kRounds - all * round / kRounds;
}

void playRound(Session& session, const Options& options, std::uint64_t round) {
    std::uint64_t pairs = shareOf(options.events / 2, round);
    // Each sleep is ended by the pair behind it.
    const auto wake = [&] {
        const std::uint64_t one = pairs > 0 ? 1 : 0;
        session.raise(one);
        pairs -= one;
    };
    for (std::uint64_t i = shareOf(options.vanishings, round); i > 0; --i) {
        session.vanish();
        wake();
    }
    for (std::uint64_t i = shareOf(options.cycles, round); i > 0; --i) {
        session.sleep();
        wake();
    }
    session.raise(pairs);
}

std::string eventTable(const Session& session) {
    aim::Table table(1);
    table.add({"event", "sent", "received", "discarded", "lost"});
    const Counts received = session.received();
    for (std::size_t kind = 0; kind < kKindNames.size(); ++kind) {
        const std::uint64_t sent = session.sent()[kind];
        const std::uint64_t discarded = session.discarded()[kind];
        const auto lost = static_cast<std::int64_t>(sent - discarded - received[kind]);
        table.add({kKindNames[kind], std::to_string(sent), std::to_string(received[kind]),
                   std::to_string(discarded), std::to_string(lost)});
    }
    return table.text();
}

std::string useTable(const ProcessUse& before, const ProcessUse& after) {
    aim::Table table(1);
    table.add({"process", "after a tenth", "at the end"});
    const auto add = [&](const char* name, std::size_t first, std::size_t last) {
        table.add({name, std::to_string(first), std::to_string(last)});
    };
    add("resident kB", before.residentKb, after.residentKb);
    add("descriptors", before.descriptors, after.descriptors);
    add("threads", before.threads, after.threads);
    return table.text();
}

bool hasGrown(const ProcessUse& before, const ProcessUse& after, std::uint64_t growthKb) {
    return after.residentKb > before.residentKb + growthKb ||
           after.descriptors > before.descriptors || after.threads > before.threads;
}

/// Each key's pair writes or takes back one character.
std::string expectedText(const Session& session) {
    return session.sent()[Key] / 2 % 2 == 0 ? "" : "a";
}

/// Whether all went well.
bool soakLink(const Options& options) {
    Session session;
    ProcessUse before;
    ProcessUse after;
    try {
        for (std::uint64_t round = 0; round < kRounds; ++round) {
            playRound(session, options, round);
            if (round + 1 == kWarmRounds)
                before = ProcessUse::now();
        }
        after = ProcessUse::now();
        session.disconnect();
    } catch (const std::exception&) {
        std::cout << eventTable(session);
        throw;
    }
    const phone::PhoneThread::Seen seen = session.seen();
    std::cout << options.cycles << " sleeps, " << seen.vanishings << " vanishings, "
              << seen.tally.interruptConnects << " connects of the phone's, " << session.linksUp()
              << " of the library's, " << seen.tally.errors << " errors\n"
              << eventTable(session) << useTable(before, after) << std::flush;
    return !hasGrown(before, after, options.growthKb) && seen.tally.errors == 0 &&
           seen.text == expectedText(session) && seen.tally.interruptConnects == session.linksUp();
}

/// Does the work so often; whether the process holds no more after it than after a tenth.
template <class Work>
bool soakWork(std::uint64_t times, const char* what, const Options& options) {
    if (times == 0)
        return true;
    const Work use = Work::run(times);
    std::cout << '\n' << times << what << useTable(use.before, use.after) << std::flush;
    return !hasGrown(use.before, use.after, options.growthKb);
}

int run(const Options& options) {
    return phone::statusOf("soak", [&] {
        if (!soakLink(options) ||
            !soakWork<PeerStarts>(options.starts,
                                  " starts of the peer manager, each stopped in its discovery\n",
                                  options) ||
            !soakWork<PipeTalks>(options.talks, " talks over a pipe\n", options))
            throw std::runtime_error("the process has grown, or the phone saw something else");
    });
}

} // namespace

} // namespace orbelantine::soak

int main(int argc, char** argv) {
    using namespace orbelantine;
    return phone::runParsed(soak::commandLine().parse(phone::argumentsOf(argc, argv)),
                            soak::helpText(), soak::run);
}
