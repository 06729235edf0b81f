#include "ipc/pipe/WindowsPipeIPCEndpoint.h"

#include "core/common/errors/ErrorAreas.h"
#include "tests/ipc/PipeScene.h"
#include "tests/support/CapturedLog.h"

#include <chrono>

namespace orbelantine {
namespace {

using namespace test;
using Calls = std::vector<std::string>;

const error_code kRefused = IpcErrors::getErrorCode(IpcErrors::SecurityValidationFailure);
const std::string kWait = R"(wait \\.\pipe\LOCAL\talk 200)";
const std::string kOpen = R"(open \\.\pipe\LOCAL\talk 0xc0000000 0x40000000)";

class PipeEndpoint : public PipeScene {
  protected:
    error_code connect(WindowsPipeIPCEndpoint& endpoint) {
        error_code ec = windows(77);
        endpoint.connect("talk", ec);
        return ec;
    }
};

TEST_F(PipeEndpoint, ConnectPausesASecondOnlyWhereThereIsNoServer) {
    pipes.answers["wait"] = {win32::kErrorFileNotFound, win32::kErrorSemTimeout,
                             win32::kErrorAccessDenied, win32::kErrorFileNotFound, 0};
    WindowsPipeIPCEndpoint endpoint(KVStore{}, system());

    EXPECT_EQ(connect(endpoint), windows(0));
    EXPECT_EQ(pipes.taken(), (Calls{kWait, kWait, kWait, kWait, kWait, kOpen}));
    EXPECT_EQ(clock.pauses().size(), 2);
    EXPECT_EQ(clock.pauses().back(), std::chrono::seconds(1));

    EXPECT_EQ(connect(endpoint), windows(win32::kWsaIsConnected));
    EXPECT_EQ(pipes.taken(), Calls{});
}

TEST_F(PipeEndpoint, APipeThatIsGoneWhenOpenedEndsConnect) {
    pipes.answers["open"] = {win32::kErrorPipeBusy};
    WindowsPipeIPCEndpoint endpoint(KVStore{}, system());
    CapturedLog log(kLogDebug, "orbelantine::WindowsPipeIPCEndpoint::");

    EXPECT_EQ(connect(endpoint), windows(win32::kErrorPipeBusy));
    EXPECT_EQ(log.missing({"connect() waiting for pipe : \\\\.\\pipe\\LOCAL\\talk..",
                           "connect() opening pipe: \\\\.\\pipe\\LOCAL\\talk.",
                           "connect() CreateFile failed, error:231."}),
              Texts{});
    error_code ec = windows(7);
    endpoint.close(ec);
    EXPECT_EQ(ec, windows(win32::kErrorOperationAborted));
}

TEST_F(PipeEndpoint, CloseEndsAWaitAtItsNextFailure) {
    pipes.answers["wait"] = {win32::kErrorSemTimeout};
    WindowsPipeIPCEndpoint endpoint(KVStore{}, system());
    error_code closed;
    pipes.hooks["wait"] = [&] { endpoint.close(closed); };

    EXPECT_EQ(connect(endpoint), windows(win32::kErrorOperationAborted));
    EXPECT_EQ(closed, windows(win32::kErrorOperationAborted));
    EXPECT_EQ(pipes.taken(), Calls{kWait});
}

TEST_F(PipeEndpoint, AClosedEndpointMayOpenAPipeButTransfersNothing) {
    WindowsPipeIPCEndpoint endpoint(KVStore{}, system());
    error_code ec;
    endpoint.close(ec);

    EXPECT_EQ(connect(endpoint), windows(0));
    char byte = 0;
    EXPECT_EQ(endpoint.readSome(&byte, 1, ec), 0);
    EXPECT_EQ(ec, windows(win32::kErrorOperationAborted));
    ec = {};
    endpoint.write(&byte, 1, ec);
    EXPECT_EQ(ec, windows(win32::kErrorOperationAborted));
}

TEST_F(PipeEndpoint, CloseDisconnectsThePipeAndLeavesTheErrorAlone) {
    {
        WindowsPipeIPCEndpoint endpoint(KVStore{}, system());
        EXPECT_EQ(connect(endpoint), windows(0));
        (void)pipes.taken();
        error_code ec = windows(77);
        endpoint.close(ec);
        EXPECT_EQ(ec, windows(77));
        EXPECT_EQ(pipes.taken(), (Calls{"disconnect pipe", "close pipe"}));
        endpoint.close(ec);
        EXPECT_EQ(ec, windows(win32::kErrorOperationAborted));
    }
    EXPECT_EQ(pipes.taken(), Calls{}) << "the pipe was closed again";

    WindowsPipeIPCEndpoint* another = new WindowsPipeIPCEndpoint(KVStore{}, system());
    EXPECT_EQ(connect(*another), windows(0));
    (void)pipes.taken();
    delete another;
    EXPECT_EQ(pipes.taken(), (Calls{"disconnect pipe", "close pipe"}));
}

TEST_F(PipeEndpoint, ARefusedServerIsClosedAndConnectMayBeTriedAgain) {
    const struct {
        const char* call;
        Calls calls;
        const char* text;
    } failures[] = {
        {"server id", {"server id pipe"}, "unable to get client process id. Error: 5"},
        {"process",
         {"server id pipe", "process 42 0x410"},
         "unable to get client process handle. Error: 5"},
        {"module",
         {"server id pipe", "process 42 0x410", "module process", "close process"},
         "unable to get client process path. Error: 5"},
    };

    WindowsPipeIPCEndpoint endpoint(signedBy("acme"), system());
    for (const auto& failure : failures) {
        CapturedLog log(kLogError, "orbelantine::WindowsPipeIPCEndpoint::connect() ");
        pipes.answers = {{failure.call, {win32::kErrorAccessDenied}}};
        EXPECT_EQ(connect(endpoint), kRefused) << failure.call;
        Calls expected{kWait, kOpen};
        expected.insert(expected.end(), failure.calls.begin(), failure.calls.end());
        expected.emplace_back("close pipe");
        EXPECT_EQ(pipes.taken(), expected);
        EXPECT_EQ(
            log.missing({failure.text, "Failed getting server path, rejecting server connection."}),
            Texts{});
    }
    pipes.answers = {};
    trust.subjects = {L"Another"};
    EXPECT_EQ(connect(endpoint), kRefused);
    trust.subjects = {L"The ACME company"};
    trust.trustResult = trust::kUntrustedRoot;
    EXPECT_EQ(connect(endpoint), kRefused);
    (void)pipes.taken();
    trust.trustResult = 0;
    EXPECT_EQ(connect(endpoint), windows(0));
    EXPECT_EQ(trust.path, L"peer.exe");
    EXPECT_EQ(pipes.taken().back(), "close process");
}

TEST_F(PipeEndpoint, ANameIsWidenedByteByByte) {
    trust.subjects = {std::wstring(L"Caf") +
                      static_cast<wchar_t>(static_cast<signed char>('\xe9'))};
    WindowsPipeIPCEndpoint endpoint(signedBy("caf\xe9"), system());
    EXPECT_EQ(connect(endpoint), windows(0));
}

} // namespace
} // namespace orbelantine
