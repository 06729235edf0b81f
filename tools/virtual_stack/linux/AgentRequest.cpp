#include "tools/virtual_stack/linux/AgentRequest.h"

#include "tools/virtual_stack/linux/BusObject.h"

#include <chrono>
#include <cstdint>
#include <utility>

namespace orbelantine::stack {

namespace {

constexpr const char* kAgentInterface = "org.bluez.Agent1";
constexpr const char* kHidUuid = "00001124-0000-1000-8000-00805f9b34fb";
constexpr std::chrono::seconds kLongestAnswer{60};
constexpr std::uint32_t kPasskey = 123456;
constexpr std::uint16_t kNoneEntered = 0;

struct Form {
    const char* method;
    /// Puts what follows the device.
    void (*put)(sdbus::MethodCall& call);
};

/// In the order of Asking.
constexpr Form kForms[] = {
    {"RequestConfirmation", [](sdbus::MethodCall& call) { call << kPasskey; }},
    {"RequestAuthorization", [](sdbus::MethodCall&) {}},
    {"AuthorizeService", [](sdbus::MethodCall& call) { call << kHidUuid; }},
    {"RequestPinCode", [](sdbus::MethodCall&) {}},
    {"RequestPasskey", [](sdbus::MethodCall&) {}},
    {"DisplayPasskey", [](sdbus::MethodCall& call) { call << kPasskey << kNoneEntered; }},
    {"DisplayPinCode", [](sdbus::MethodCall& call) { call << "123456"; }},
};

} // namespace

AgentRequest::AgentRequest(sdbus::IConnection& connection, Agent agent, Question question,
                           Recorder& recorder, Answered answered)
    : mAgent(std::move(agent))
    , mQuestion(std::move(question))
    , mRecorder(recorder)
    , mAnswered(std::move(answered))
    , mProxy(sdbus::createProxy(connection, mAgent.client, mAgent.path)) {
    ask();
}

void AgentRequest::ask() {
    const Form& form = kForms[static_cast<std::size_t>(mQuestion.kind)];
    mRecorder.add({"asked", mQuestion.address, form.method, mAgent.client});
    quietly([&] {
        auto call = mProxy->createMethodCall(kAgentInterface, form.method);
        call << sdbus::ObjectPath(mQuestion.path);
        form.put(call);
        mProxy->callMethod(
            call,
            [this](sdbus::MethodReply&, const sdbus::Error* error) {
                take(error == nullptr ? "" : error->getName());
            },
            kLongestAnswer);
    });
}

void AgentRequest::cancel() {
    if (std::exchange(mAnswered, nullptr) == nullptr)
        return;
    mRecorder.add({"canceled", mQuestion.address, "", mAgent.client});
    quietly([this] {
        auto call = mProxy->createMethodCall(kAgentInterface, "Cancel");
        call.dontExpectReply();
        mProxy->callMethod(call);
    });
}

void AgentRequest::take(const std::string& error) {
    mRecorder.add({"answered", mQuestion.address, error, mAgent.client});
    if (const Answered answered = std::exchange(mAnswered, nullptr))
        answered(error);
}

} // namespace orbelantine::stack
