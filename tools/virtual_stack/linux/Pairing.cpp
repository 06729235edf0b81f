#include "tools/virtual_stack/linux/Pairing.h"

#include <utility>

namespace orbelantine::stack {

Pairing::Pairing(Surroundings& surroundings, Question question, Decision decision, Outcome outcome)
    : mSurroundings(surroundings)
    , mQuestion(std::move(question))
    , mDecision(decision)
    , mOutcome(std::move(outcome)) {}

void Pairing::call(Caller caller) {
    mCaller = std::move(caller);
    const std::optional<Agent> agent = mSurroundings.bus->agents.of(mCaller->client);
    // Where nobody can be asked, the computer agrees to what it has begun itself.
    if (agent)
        begin(agent);
    else
        letPhoneDecide();
}

void Pairing::ask() {
    begin(mSurroundings.bus->agents.defaultAgent());
}

void Pairing::fail(const std::string& error) {
    if (mRequest)
        mRequest->cancel();
    end(error);
}

void Pairing::cancel() {
    fail("AuthenticationCanceled");
}

bool Pairing::isOf(const std::string& client) const {
    return mCaller && mCaller->client == client;
}

bool Pairing::hasAgent(const std::string& client) const {
    return mRequest && mRequest->client() == client;
}

void Pairing::begin(const std::optional<Agent>& agent) {
    if (!agent) {
        mSurroundings.recorder.add({"refused", mQuestion.address, "no agent", ""});
        return end("AuthenticationFailed");
    }
    mRequest = std::make_unique<AgentRequest>(
        mSurroundings.bus->connection, *agent, mQuestion, mSurroundings.recorder,
        [this](const std::string& error) { takeAnswer(error); });
}

void Pairing::takeAnswer(const std::string& error) {
    if (!error.empty())
        return end("AuthenticationFailed");
    if (mCaller)
        return letPhoneDecide();
    mOutcome.agreed(mQuestion.kind);
    end("");
}

void Pairing::letPhoneDecide() {
    if (mDecision == Decision::Silent)
        return;
    if (mDecision == Decision::Refuses)
        return end("AuthenticationRejected");
    mOutcome.agreed(mQuestion.kind);
    end("");
}

void Pairing::end(const std::string& error) {
    const std::optional<Caller> caller = std::exchange(mCaller, std::nullopt);
    if (caller && mSurroundings.bus != nullptr)
        quietly([&] {
            if (error.empty())
                caller->result.returnResults();
            else
                caller->result.returnError(bluezError(error, "Authentication failed"));
        });
    if (mRequest)
        mSurroundings.retire(std::move(mRequest));
    // This may be the end of this object.
    const auto ended = mOutcome.ended;
    ended();
}

} // namespace orbelantine::stack
