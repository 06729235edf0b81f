#pragma once

#include "tools/virtual_stack/linux/Recorder.h"
#include "tools/virtual_stack/linux/Settings.h"

#include <sdbus-c++/sdbus-c++.h>

#include <functional>
#include <memory>
#include <string>

namespace orbelantine::stack {

struct Question {
    Asking kind = Asking::Confirmation;
    /// The device's object, and its address.
    std::string path;
    std::string address;
};

/// One question to an agent, up to its answer.
class AgentRequest {
  public:
    /// Gets the agent's error, empty for consent.
    using Answered = std::function<void(const std::string& error)>;

    /// Asks. `answered` isn't called once the request is cancelled or gone.
    AgentRequest(sdbus::IConnection& connection, Agent agent, Question question, Recorder& recorder,
                 Answered answered);

    [[nodiscard]] const std::string& client() const { return mAgent.client; }

    [[nodiscard]] bool isOpen() const { return mAnswered != nullptr; }

    /// Tells the agent that the question is off. What it answers afterwards is recorded alone.
    void cancel();

  private:
    void ask();
    void take(const std::string& error);

    const Agent mAgent;
    const Question mQuestion;
    Recorder& mRecorder;
    Answered mAnswered;
    std::unique_ptr<sdbus::IProxy> mProxy;
};

} // namespace orbelantine::stack
