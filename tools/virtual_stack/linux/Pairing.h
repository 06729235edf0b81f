#pragma once

#include "tools/virtual_stack/linux/Settings.h"
#include "tools/virtual_stack/linux/Surroundings.h"

#include <sdbus-c++/sdbus-c++.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orbelantine::stack {

/// A pairing of one device, or another question of its to the agent, from its beginning to its end.
/// Either a client has called Pair, or the phone asks by itself.
class Pairing {
  public:
    struct Caller {
        std::string client;
        sdbus::Result<> result;
    };

    /// `agreed` runs when the agent, and the phone where a client has called, are agreed; `ended`
    /// when the pairing is over, after it.
    struct Outcome {
        std::function<void(Asking)> agreed;
        std::function<void()> ended;
    };

    /// `decision` is the phone's user's.
    Pairing(Surroundings& surroundings, Question question, Decision decision, Outcome outcome);

    /// Begins; the pairing may be over before this returns.
    void call(Caller caller);
    void ask();

    /// `error` is the last part of BlueZ's name. Only the caller is told.
    void fail(const std::string& error);
    /// Cancels the question too.
    void cancel();

    [[nodiscard]] bool isOf(const std::string& client) const;
    [[nodiscard]] bool hasAgent(const std::string& client) const;

  private:
    void begin(const std::optional<Agent>& agent);
    void takeAnswer(const std::string& error);
    void letPhoneDecide();
    void end(const std::string& error);

    Surroundings& mSurroundings;
    const Question mQuestion;
    const Decision mDecision;
    const Outcome mOutcome;
    std::optional<Caller> mCaller;
    std::unique_ptr<AgentRequest> mRequest;
};

} // namespace orbelantine::stack
