#include "tools/virtual_stack/linux/Agents.h"

#include <algorithm>

namespace orbelantine::stack {

namespace {

constexpr const char* kCapabilities[] = {"DisplayOnly",     "DisplayYesNo",    "KeyboardOnly",
                                         "NoInputNoOutput", "KeyboardDisplay", ""};

} // namespace

Agents::Agents(sdbus::IConnection& connection, const std::string& path, Recorder& recorder)
    : mRecorder(recorder)
    , mObject(connection, path, "org.bluez.AgentManager1") {
    mObject.method("RegisterAgent",
                   [this](const sdbus::ObjectPath& agent, const std::string& capability) {
                       add({mObject.sender(), agent, capability});
                   });
    mObject.method("UnregisterAgent",
                   [this](const sdbus::ObjectPath& agent) { remove(mObject.sender(), agent); });
    mObject.method("RequestDefaultAgent", [this](const sdbus::ObjectPath& agent) {
        makeDefault(mObject.sender(), agent);
    });
    mObject.publish();
}

std::optional<Agent> Agents::of(const std::string& client) const {
    const auto place = std::ranges::find(mAgents, client, &Agent::client);
    return place == mAgents.end() ? defaultAgent() : std::optional(*place);
}

std::optional<Agent> Agents::defaultAgent() const {
    return mAgents.empty() ? std::nullopt : std::optional(mAgents.front());
}

void Agents::forget(const std::string& client) {
    if (std::erase_if(mAgents, [&](const Agent& agent) { return agent.client == client; }) != 0)
        changed();
}

void Agents::add(const Agent& agent) {
    mRecorder.add({"RegisterAgent", agent.path, agent.capability, agent.client});
    if (find(agent.client) != mAgents.end())
        throw bluezError("AlreadyExists", "Already Exists");
    if (std::ranges::find(kCapabilities, agent.capability) == std::end(kCapabilities))
        throw bluezError("InvalidArguments", "Invalid arguments in method call");
    mAgents.push_back(agent);
    changed();
}

void Agents::remove(const std::string& client, const std::string& path) {
    mRecorder.add({"UnregisterAgent", path, "", client});
    const auto agent = find(client);
    if (agent == mAgents.end() || agent->path != path)
        throw bluezError("DoesNotExist", "Does Not Exist");
    mAgents.erase(agent);
    changed();
}

void Agents::makeDefault(const std::string& client, const std::string& path) {
    mRecorder.add({"RequestDefaultAgent", path, "", client});
    const auto agent = find(client);
    if (agent == mAgents.end() || agent->path != path)
        throw bluezError("DoesNotExist", "Does Not Exist");
    std::rotate(mAgents.begin(), agent, agent + 1);
    changed();
}

std::vector<Agent>::iterator Agents::find(const std::string& client) {
    return std::ranges::find(mAgents, client, &Agent::client);
}

void Agents::changed() {
    mRecorder.change([this](Seen& seen) { seen.agents = mAgents; });
}

} // namespace orbelantine::stack
