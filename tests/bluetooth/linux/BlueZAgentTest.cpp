#include "tests/bluetooth/linux/BlueZTest.h"
#include "tests/support/CapturedLog.h"

#include <sdbus-c++/sdbus-c++.h>

namespace orbelantine::test {

namespace {

using stack::Asking;

constexpr const char* kRejected = "org.bluez.Error.Rejected";
constexpr const char* kCanceled = "org.bluez.Error.Canceled";

class BlueZAgentTest : public BlueZTest {
  protected:
    void SetUp() override {
        BlueZTest::SetUp();
        if (!IsSkipped())
            stack->addDevice(knownPhone());
    }

    /// What is asked once it has reached whoever listens.
    Peer asked(const char* address, Asking kind = Asking::Confirmation) {
        requests.take();
        stack->phoneAsks(address, kind);
        const auto all = requests.await(1);
        return all.size() == 1 ? all.front() : Peer{};
    }

    const Peer phone{L"AA:BB:CC:00:00:01", L"Phone", kPhoneClass};
};

} // namespace

TEST_F(BlueZAgentTest, ThereIsAnAgentOnlyWhereSomebodyWantsToBeAsked) {
    start();
    EXPECT_TRUE(stack->seen().agents.empty());
    EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), generic::kBadAddress);
    backend->stop();
    EXPECT_EQ(backend->start(true).value(), 0);
    ASSERT_EQ(stack->seen().agents.size(), 1U);
    backend->stop();
    EXPECT_TRUE(stack->waitUntil([](const stack::Seen& seen) { return seen.agents.empty(); }));
    startAsked();
    ASSERT_EQ(stack->seen().agents.size(), 1U);
    EXPECT_EQ(stack->seen().agents[0].capability, "DisplayYesNo");
    EXPECT_EQ(stack->seen().count("RequestDefaultAgent"), 2U);
}

TEST_F(BlueZAgentTest, PhoneThatAsksIsPairedWhenItsOwnAddressIsApproved) {
    startAsked();
    for (const Asking kind : {Asking::Confirmation, Asking::Authorization}) {
        const std::size_t answers = stack->seen().count("answered");
        EXPECT_EQ(asked(kPhone, kind), phone);
        EXPECT_EQ(run(&BlueZBackend::authRemote, kOther), generic::kBadAddress);
        EXPECT_EQ(run(&BlueZBackend::authRemote, ""), generic::kBadAddress);
        EXPECT_EQ(stack->seen().count("answered"), answers);
        EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), 0);
        EXPECT_EQ(answer(answers + 1), "");
        EXPECT_TRUE(comesTrue([&] { return stack->device(kPhone).paired; }));
        EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), generic::kBadAddress) << "twice";
    }
}

TEST_F(BlueZAgentTest, PairingThatWeBeganIsAskedForToo) {
    startAsked();
    Outcome pairing;
    backend->pair(CMacAddress(std::string(kPhone)), pairing.completion());
    EXPECT_EQ(requests.await(1), std::vector<Peer>{phone});
    EXPECT_FALSE(pairing.isThere());
    EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), 0);
    EXPECT_EQ(pairing.value(), 0);
    EXPECT_TRUE(stack->device(kPhone).paired);
    EXPECT_EQ(run(&BlueZBackend::unpair, kPhone), 0);
    EXPECT_FALSE(stack->device(kPhone).paired);
    EXPECT_TRUE(comesTrue([&] { return run(&BlueZBackend::unpair, kPhone) == 1168; }));
}

TEST_F(BlueZAgentTest, PairingThatFailsTellsWhy) {
    stack->addDevice({.address = kOther, .name = "Away", .trusted = true, .inRange = false});
    start();
    const CapturedLog log(kLogError);
    EXPECT_EQ(run(&BlueZBackend::pair, "AA:BB:CC:00:00:09"), 1168);
    EXPECT_EQ(run(&BlueZBackend::pair, kOther), 1167);
    auto refusing = knownPhone();
    refusing.decision = stack::Decision::Refuses;
    stack->addDevice(refusing);
    EXPECT_EQ(run(&BlueZBackend::pair, kPhone), 1244);
    refusing.decision = stack::Decision::Silent;
    stack->addDevice(refusing);
    Outcome pairing;
    backend->pair(CMacAddress(std::string(kPhone)), pairing.completion());
    EXPECT_TRUE(stack->waitUntil([](const auto& seen) { return seen.count("Pair") == 3; }));
    EXPECT_EQ(run(&BlueZBackend::pair, kPhone), 170);
    stack->phoneCancels(kPhone);
    EXPECT_EQ(pairing.value(), 1223);
}

TEST_F(BlueZAgentTest, RequestThatNobodyAnswersIsRefusedAfter25SecondsOrAtTheStop) {
    startAsked();
    EXPECT_EQ(asked(kPhone), phone);
    clock.advance(std::chrono::seconds(25) - std::chrono::nanoseconds(1));
    EXPECT_EQ(rescan(), 0);
    EXPECT_EQ(stack->seen().count("answered"), 0U);
    clock.advance(std::chrono::nanoseconds(1));
    EXPECT_EQ(answer(), kRejected);
    EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), generic::kBadAddress);
    EXPECT_EQ(asked(kPhone), phone);
    backend->stop();
    EXPECT_EQ(answer(2), kCanceled);
    EXPECT_FALSE(stack->device(kPhone).paired);
    EXPECT_TRUE(backend->onAuthenticationRequest.empty());
    EXPECT_FALSE(backend->onPeerFound.empty());
}

TEST_F(BlueZAgentTest, RequestThatThePhoneCancelsCantBeApproved) {
    startAsked();
    EXPECT_EQ(asked(kPhone), phone);
    clock.advance(std::chrono::seconds(24));
    stack->phoneCancels(kPhone);
    // BlueZ answers this after it has told of the end.
    EXPECT_EQ(backend->enableDiscoverable().value(), 0);
    EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), generic::kBadAddress);
    EXPECT_FALSE(stack->device(kPhone).paired);
    EXPECT_EQ(asked(kPhone), phone) << "a second try";
    clock.advance(std::chrono::seconds(24));
    EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), 0);
    EXPECT_EQ(answer(), "");
}

TEST_F(BlueZAgentTest, ServicesOfAnApprovedDeviceAreAskedForOnce) {
    stack->addDevice({.address = kOther, .name = "Other", .trusted = true});
    startAsked();
    EXPECT_EQ(asked(kPhone, Asking::Service), phone);
    EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), 0);
    EXPECT_EQ(answer(), "");
    stack->phoneAsks(kPhone, Asking::Service);
    EXPECT_EQ(answer(2), "");
    EXPECT_EQ(std::get<1>(asked(kOther, Asking::Service)), L"Other");
    EXPECT_EQ(stack->seen().count("answered"), 2U);
    // What is unpaired is asked for anew.
    EXPECT_EQ(run(&BlueZBackend::unpair, kPhone), 0);
    stack->addDevice(knownPhone());
    EXPECT_EQ(asked(kPhone, Asking::Service), phone);
}

TEST_F(BlueZAgentTest, NumbersAreNotTypedHereAndNotLogged) {
    startAsked();
    CapturedLog log(kLogTrace);
    const std::pair<Asking, const char*> answers[] = {{Asking::PinCode, kRejected},
                                                      {Asking::Passkey, kRejected},
                                                      {Asking::DisplayPasskey, ""},
                                                      {Asking::DisplayPinCode, ""}};
    std::size_t count = 0;
    for (const auto& [kind, expected] : answers) {
        stack->phoneAsks(kPhone, kind);
        EXPECT_EQ(answer(++count), expected);
    }
    EXPECT_EQ(requests.take().size(), 0U);
    for (const std::string& line : log.told())
        EXPECT_EQ(line.find("123456"), std::string::npos) << line;
}

TEST_F(BlueZAgentTest, NobodyButBlueZIsAnswered) {
    startAsked();
    EXPECT_EQ(asked(kPhone), phone);
    const stack::Agent agent = stack->seen().agents.at(0);
    const auto client = sdbus::createSessionBusConnectionWithAddress(bus.address());
    const auto proxy = sdbus::createProxy(*client, agent.client, agent.path);
    const sdbus::ObjectPath device("/org/bluez/hci0/dev_AA_BB_CC_00_00_01");
    const auto refusal = [&](const char* method, const auto&... arguments) -> std::string {
        try {
            proxy->callMethod(method).onInterface("org.bluez.Agent1").withArguments(arguments...);
            return "";
        } catch (const sdbus::Error& error) {
            return error.getName();
        }
    };
    const std::string denied = "org.freedesktop.DBus.Error.AccessDenied";
    EXPECT_EQ(refusal("RequestConfirmation", device, std::uint32_t{1}), denied);
    EXPECT_EQ(refusal("AuthorizeService", device, std::string("1124")), denied);
    EXPECT_EQ(refusal("Cancel"), denied);
    EXPECT_EQ(refusal("Release"), denied);
    EXPECT_EQ(requests.take().size(), 1U);
    EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), 0) << "the genuine one is still open";
    EXPECT_EQ(answer(), "");
}

} // namespace orbelantine::test
