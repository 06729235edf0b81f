#include "ipc/pipe/WindowsPipeIPCServer.h"

#include "core/common/errors/ErrorAreas.h"
#include "tests/ipc/PipeScene.h"
#include "tests/support/CapturedLog.h"

#include <stdexcept>

namespace orbelantine {
namespace {

using namespace test;
using Calls = std::vector<std::string>;

class PipeServer : public PipeScene {
  protected:
    error_code create(WindowsPipeIPCServer& server) {
        error_code ec;
        server.create("talk", ec);
        return ec;
    }

    /// The error of an accept, or the success that was passed in.
    error_code accept(WindowsPipeIPCServer& server) {
        error_code ec = windows(0);
        mEndpoint = server.accept(ec);
        return ec;
    }

    /// The calls since the last time from the pipe's making on.
    Calls pipeCalls() {
        Calls calls = pipes.taken();
        const auto made = std::find(calls.begin(), calls.end(), kCreate);
        return {made, calls.end()};
    }

    const std::string kCreate = R"(create \\.\pipe\LOCAL\talk)";
    boost::shared_ptr<IIPCEndpoint> mEndpoint;
};

TEST_F(PipeServer, LivesForOneCreate) {
    WindowsPipeIPCServer server(KVStore{}, system());
    EXPECT_EQ(accept(server), windows(win32::kErrorBadUnit));
    EXPECT_EQ(create(server), error_code());
    EXPECT_EQ(create(server), windows(win32::kErrorInvalidFunction));
    server.close();
    EXPECT_EQ(create(server), windows(win32::kErrorInvalidFunction));
    EXPECT_EQ(accept(server), windows(win32::kErrorBadUnit));
    EXPECT_EQ(pipes.taken(), Calls{});

    WindowsPipeIPCServer unnamed(KVStore{}, system());
    error_code ec;
    unnamed.create("", ec);
    EXPECT_FALSE(ec);
    unnamed.create("", ec);
    EXPECT_EQ(ec, windows(win32::kErrorInvalidFunction));
}

TEST_F(PipeServer, ThePipeIsTheUsersAloneAndOfOneInstance) {
    WindowsPipeIPCServer server(KVStore{}, system());
    (void)create(server);
    EXPECT_EQ(accept(server), windows(0));
    ASSERT_TRUE(mEndpoint);
    EXPECT_EQ(pipes.descriptor, L"D:PAI(A;; FA;;;S-1-5-7)");
    EXPECT_EQ(pipes.openTexts, 0);
    EXPECT_EQ(pipes.params.openMode, 0x40000003U);
    EXPECT_EQ(pipes.params.pipeMode, 14U);
    EXPECT_EQ(pipes.params.maxInstances, 1U);
    EXPECT_EQ(pipes.params.outBufferSize, 1024U);
    EXPECT_EQ(pipes.params.inBufferSize, 1024U);
    EXPECT_EQ(pipes.params.defaultTimeout, 200U);
    EXPECT_EQ(pipes.taken(),
              (Calls{"token 8", "token size", "token user", "valid", "sid", "close token",
                     "descriptor 1", kCreate, "event", "connect pipe event"}));
}

TEST_F(PipeServer, AFailureBeforeThePipeIsToldAndLeavesNothingOpen) {
    const struct {
        const char* call;
        const char* text;
    } failures[] = {
        {"token", "getCurrentUserSid() OpenProcessToken failed. GetLastError returned: 8"},
        {"token size", "getCurrentUserSid() GetTokenInformation failed. GetLastError returned: 8"},
        {"token user",
         "getCurrentUserSid() 2 GetTokenInformation failed. GetLastError returned: 8."},
        {"valid", "getCurrentUserSid() The owner SID is invalid."},
        {"sid", "getCurrentUserSid() Failed converting sid to string."},
        {"descriptor", "accept() Unable to set ACL information. Error: 8"},
    };

    WindowsPipeIPCServer server(KVStore{}, system());
    (void)create(server);
    for (const auto& failure : failures) {
        CapturedLog log(kLogError);
        pipes.answers = {{failure.call, {win32::kErrorNotEnoughMemory}}};
        EXPECT_EQ(accept(server), windows(win32::kErrorNotEnoughMemory)) << failure.call;
        EXPECT_EQ(log.missing({failure.text}), Texts{});
        const Calls calls = pipes.taken();
        EXPECT_EQ(std::count(calls.begin(), calls.end(), "close token"),
                  std::string(failure.call) == "token" ? 0 : 1);
        EXPECT_EQ(std::count(calls.begin(), calls.end(), kCreate), 0);
    }

    pipes.answers = {{"create", {win32::kErrorPipeBusy}}};
    EXPECT_EQ(accept(server), windows(win32::kErrorPipeBusy));
    EXPECT_EQ(pipeCalls(), Calls{kCreate});
}

TEST_F(PipeServer, WithoutAnEventAcceptThrowsAndThePipeStaysOpen) {
    WindowsPipeIPCServer server(KVStore{}, system());
    (void)create(server);
    pipes.answers["event"] = {win32::kErrorNotEnoughMemory};
    try {
        (void)accept(server);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "failed creating event.");
    }
    EXPECT_EQ(pipeCalls(), (Calls{kCreate, "event"}));
    EXPECT_EQ(pipes.openTexts, 0);
}

TEST_F(PipeServer, AConnectionThatComesIsTakenWithItsEventLeftOpen) {
    using Answers = std::map<std::string, std::deque<std::uint32_t>>;
    const Answers roads[] = {
        {},
        {{"connect", {win32::kErrorPipeConnected}}},
        {{"connect", {win32::kErrorIoPending}}, {"await", {258, 258, 0}}},
    };
    for (const Answers& road : roads) {
        WindowsPipeIPCServer server(KVStore{}, system());
        (void)create(server);
        pipes.answers = road;
        EXPECT_EQ(accept(server), windows(0));
        EXPECT_TRUE(mEndpoint);
        Calls expected{kCreate, "event", "connect pipe event"};
        if (road.contains("await"))
            expected.insert(expected.end(), {"await event 100", "await event 100",
                                             "await event 100", "result pipe"});
        EXPECT_EQ(pipeCalls(), expected);
        mEndpoint.reset();
        EXPECT_EQ(pipes.taken(), Calls{"close pipe"});
    }
}

TEST_F(PipeServer, AConnectionThatFailsIsCleanedUp) {
    constexpr std::uint32_t kWaitFailed = 0xFFFFFFFF;

    const struct {
        std::map<std::string, std::deque<std::uint32_t>> answers;
        Calls calls;
        std::uint32_t error;
    } failures[] = {
        {{{"connect", {win32::kErrorNoData}}}, {}, win32::kErrorNoData},
        {{{"connect", {win32::kErrorIoPending}}, {"await", {kWaitFailed}}},
         {"await event 100"},
         kWaitFailed},
        {{{"connect", {win32::kErrorIoPending}}, {"result", {win32::kErrorBrokenPipe}}},
         {"await event 100", "result pipe"},
         win32::kErrorBrokenPipe},
    };

    for (const auto& failure : failures) {
        WindowsPipeIPCServer server(KVStore{}, system());
        (void)create(server);
        pipes.answers = failure.answers;
        EXPECT_EQ(accept(server), windows(failure.error));
        EXPECT_FALSE(mEndpoint);
        Calls expected{kCreate, "event", "connect pipe event"};
        expected.insert(expected.end(), failure.calls.begin(), failure.calls.end());
        expected.insert(expected.end(), {"close event", "cancel pipe", "close pipe"});
        EXPECT_EQ(pipeCalls(), expected);
    }
}

TEST_F(PipeServer, CloseEndsAWaitAlsoWhereAClientCameMeanwhile) {
    for (const std::uint32_t waited : {PipeApi::kWaitTimeout, PipeApi::kWaitObject}) {
        WindowsPipeIPCServer server(KVStore{}, system());
        (void)create(server);
        pipes.answers = {{"connect", {win32::kErrorIoPending}}, {"await", {waited}}};
        pipes.hooks["await"] = [&] { server.close(); };
        EXPECT_EQ(accept(server), windows(win32::kErrorOperationAborted));
        Calls calls = pipeCalls();
        ASSERT_GT(calls.size(), 3U);
        EXPECT_EQ(Calls(calls.end() - 3, calls.end()),
                  (Calls{"close event", "cancel pipe", "close pipe"}));
    }
}

TEST_F(PipeServer, ARefusedClientIsClosedWithTheEventLeftOpen) {
    WindowsPipeIPCServer server(signedBy("acme"), system());
    (void)create(server);
    const error_code refused = IpcErrors::getErrorCode(IpcErrors::SecurityValidationFailure);
    CapturedLog log(kLogError, "orbelantine::WindowsPipeIPCServer::");
    pipes.answers["module"] = {win32::kErrorAccessDenied};
    EXPECT_EQ(accept(server), refused);
    EXPECT_EQ(pipeCalls(),
              (Calls{kCreate, "event", "connect pipe event", "client id pipe", "process 42 0x410",
                     "module process", "close process", "close pipe"}));
    pipes.answers = {};
    trust.subjects = {L"Another"};
    EXPECT_EQ(accept(server), refused);
    EXPECT_EQ(pipeCalls().back(), "close pipe");
    EXPECT_EQ(log.missing({"accept() Failed getting client path, rejecting client.",
                           "accept() Client signature verification failed."}),
              Texts{});
    trust.subjects = {L"Acme"};
    EXPECT_EQ(accept(server), windows(0));
    EXPECT_TRUE(mEndpoint);
}

TEST_F(PipeServer, AnAcceptedEndCantConnectAndClosesOnce) {
    WindowsPipeIPCServer server(KVStore{}, system());
    (void)create(server);
    (void)accept(server);
    ASSERT_TRUE(mEndpoint);
    error_code ec;
    mEndpoint->connect("talk", ec);
    EXPECT_EQ(ec, windows(win32::kWsaOperationNotSupported));
    (void)pipes.taken();
    mEndpoint->close(ec);
    EXPECT_EQ(ec, windows(0));
    mEndpoint->close(ec);
    EXPECT_EQ(ec, windows(win32::kErrorOperationAborted));
    EXPECT_EQ(pipes.taken(), Calls{"close pipe"});
}

} // namespace
} // namespace orbelantine
