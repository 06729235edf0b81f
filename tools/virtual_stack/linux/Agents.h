#pragma once

#include "tools/virtual_stack/linux/BusObject.h"
#include "tools/virtual_stack/linux/Recorder.h"

#include <optional>
#include <string>
#include <vector>

namespace orbelantine::stack {

/// The agents that clients have registered, one each, as AgentManager1 has it.
class Agents {
  public:
    /// Adds the manager's interface; the agents are on the connection's bus.
    Agents(sdbus::IConnection& connection, const std::string& path, Recorder& recorder);

    /// The client's own agent, or else the default one.
    [[nodiscard]] std::optional<Agent> of(const std::string& client) const;

    [[nodiscard]] std::optional<Agent> defaultAgent() const;

    void forget(const std::string& client);

  private:
    void add(const Agent& agent);
    void remove(const std::string& client, const std::string& path);
    void makeDefault(const std::string& client, const std::string& path);
    [[nodiscard]] std::vector<Agent>::iterator find(const std::string& client);
    void changed();

    Recorder& mRecorder;
    /// The default one first.
    std::vector<Agent> mAgents;
    BusObject mObject;
};

} // namespace orbelantine::stack
