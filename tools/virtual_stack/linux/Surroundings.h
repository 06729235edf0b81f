#pragma once

#include "tools/virtual_stack/linux/AgentRequest.h"
#include "tools/virtual_stack/linux/Agents.h"
#include "tools/virtual_stack/linux/Recorder.h"

#include <sdbus-c++/sdbus-c++.h>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace orbelantine::stack {

/// What adapters and devices work with. While the stack is stopped there is no bus.
struct Surroundings {
    struct Bus {
        sdbus::IConnection& connection;
        Agents& agents;
    };

    /// Lets go of a request, though its answer may just be running.
    void retire(std::unique_ptr<AgentRequest> request) {
        retired.push_back(std::move(request));
        post([this] { retired.clear(); });
    }

    Recorder& recorder;
    /// Runs a task on the stack's thread, later.
    std::function<void(std::function<void()>)> post;
    const Bus* bus = nullptr;
    std::vector<std::unique_ptr<AgentRequest>> retired;
};

} // namespace orbelantine::stack
