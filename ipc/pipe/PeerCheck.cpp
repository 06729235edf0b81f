#include "ipc/pipe/PeerCheck.h"

#include "core/common/log/Log.h"
#include "ipc/trust/VerifyProcessSignature.h"

namespace orbelantine {

namespace {

// PROCESS_QUERY_INFORMATION and PROCESS_VM_READ.
constexpr std::uint32_t kMayQueryAndRead = 0x410;

// Character by character, whatever the encoding: a negative char stays negative.
std::wstring widened(const std::string& text) {
    std::wstring wide;
    for (const char c : text)
        wide.push_back(static_cast<wchar_t>(static_cast<signed char>(c)));
    return wide;
}

PipeApi::Error processIdOf(PipeApi& api, PipeHandle pipe, PeerRole role, std::uint32_t& id) {
    return role == PeerRole::Client ? api.getNamedPipeClientProcessId(pipe, id)
                                    : api.getNamedPipeServerProcessId(pipe, id);
}

} // namespace

PeerPolicy::PeerPolicy(KVStore& store)
    : signerName(store.getStringAt("signer_name"))
    , verifySignature(store.getBoolAt("verify_trusted_signature")) {}

// The texts say client for both: they are known that way.
std::wstring peerPath(PipeApi& api, PipeHandle pipe, PeerRole role) {
    std::uint32_t id = 0;
    if (const PipeApi::Error error = processIdOf(api, pipe, role, id)) {
        ORB_LOG_TEXT(kLogError, "unable to get client process id. Error: %d", error);
        return {};
    }
    PipeHandle process = 0;
    if (const PipeApi::Error error = api.openProcess(pipe, kMayQueryAndRead, id, process)) {
        ORB_LOG_TEXT(kLogError, "unable to get client process handle. Error: %d", error);
        return {};
    }
    std::wstring path;
    const PipeApi::Error error = api.getModuleFileName(process, path);
    if (error)
        ORB_LOG_TEXT(kLogError, "unable to get client process path. Error: %d", error);
    api.closeHandle(process);
    return error ? std::wstring() : path;
}

bool peerIsTrusted(const PipeSystem& system, const PeerPolicy& policy, const std::wstring& path) {
    return VerifyProcessSignature(system.trust()).verify(path, widened(policy.signerName), L"");
}

} // namespace orbelantine
