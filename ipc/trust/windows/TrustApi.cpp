#include "ipc/trust/TrustApi.h"

#include "core/common/log/Log.h"
#include "ipc/trust/SignerSteps.h"
#include "ipc/trust/windows/SignerDetails.h"
#include "ipc/trust/windows/SignerMessage.h"

#include <wintrust.h>

#include <array>
#include <string>

namespace orbelantine {

namespace {

/// WINTRUST_DATA as it is since Windows 8; mingw's lacks the last member.
struct TrustData {
    DWORD size;
    void* policyData;
    void* clientData;
    DWORD uiChoice;
    DWORD revocationChecks;
    DWORD unionChoice;
    WINTRUST_FILE_INFO* file;
    DWORD stateAction;
    HANDLE stateData;
    wchar_t* urlReference;
    DWORD providerFlags;
    DWORD uiContext;
    void* signatureSettings;
};

static_assert(sizeof(TrustData) == 88);
static_assert(sizeof(WINTRUST_FILE_INFO) == 32);

/// Revocation is looked up in what the machine has already: no check goes out to the network.
constexpr DWORD kProviderFlags = WTD_REVOCATION_CHECK_CHAIN_EXCLUDE_ROOT |
                                 WTD_USE_DEFAULT_OSVER_CHECK | WTD_CACHE_ONLY_URL_RETRIEVAL;
static_assert(kProviderFlags == 0x1480);

/// {00AAC56B-CD44-11D0-8CC2-00C04FC295EE}
constexpr GUID kGenericVerify = {
    0x00AAC56B, 0xCD44, 0x11D0, {0x8C, 0xC2, 0x00, 0xC0, 0x4F, 0xC2, 0x95, 0xEE}};

using VerifyTrust = LONG(WINAPI*)(HWND owner, const GUID* action, TrustData* data);

HMODULE loadWinTrust() {
    std::array<wchar_t, MAX_PATH> folder{};
    const UINT size = GetSystemDirectoryW(folder.data(), MAX_PATH);
    if (size == 0 || size >= MAX_PATH)
        return nullptr;
    return LoadLibraryW((std::wstring(folder.data()) + L"\\wintrust.dll").c_str());
}

void logDate(const SystemTime& time) {
    ORB_LOG_TEXT(kLogDebug, "%s() Date of TimeStamp : %02u/%02u/%04u %02u:%02u",
                 signer_step::kCheckCertificate, time[1], time[3], time[0], time[4], time[5]);
}

class WindowsTrustApi final : public TrustApi {
  public:
    ~WindowsTrustApi() override { unload(); }

    bool initialize() override {
        if (mVerifyTrust != nullptr)
            return true;
        mLibrary = loadWinTrust();
        if (mLibrary == nullptr)
            return false;
        // By way of void*, since the compiler warns of a cast between types of functions.
        mVerifyTrust = reinterpret_cast<VerifyTrust>(
            reinterpret_cast<void*>(GetProcAddress(mLibrary, "WinVerifyTrustEx")));
        if (mVerifyTrust == nullptr)
            unload();
        return mVerifyTrust != nullptr;
    }

    void uninitialize() override { unload(); }

    bool readSigner(const std::wstring& path, std::uint32_t index,
                    FileEvidence& evidence) override {
        const SignerMessage message = SignerMessage::read(path, index);
        if (!message.signer)
            return false;
        getProgAndPublisherInfo(*message.signer, evidence);
        const CertContextOwner certificate = message.certificate();
        if (!certificate)
            return false;
        ORB_LOG_TEXT(kLogDebug, "%s() Signer Certificate:", signer_step::kCheckCertificate);
        if (getCertificateInfo(*certificate, evidence))
            logSignerNames(evidence);
        const auto counterSigner = getTimeStampSignerInfo(*message.signer);
        if (counterSigner && getDateOfTimeStamp(*counterSigner, evidence))
            logDate(evidence.timeStamp);
        return true;
    }

    std::uint32_t verifyTrust(const std::wstring& path) override {
        if (mVerifyTrust == nullptr)
            return trust::kNoSignature;
        WINTRUST_FILE_INFO file{};
        file.cbStruct = sizeof(file);
        file.pcwszFilePath = path.c_str();
        TrustData data{};
        data.size = sizeof(data);
        data.uiChoice = WTD_UI_NONE;
        data.revocationChecks = WTD_REVOKE_NONE;
        data.unionChoice = WTD_CHOICE_FILE;
        data.file = &file;
        data.stateAction = WTD_STATEACTION_VERIFY;
        data.providerFlags = kProviderFlags;
        const auto result = static_cast<std::uint32_t>(call(data));
        data.stateAction = WTD_STATEACTION_CLOSE;
        call(data);
        return result;
    }

  private:
    LONG call(TrustData& data) const {
        return mVerifyTrust(static_cast<HWND>(INVALID_HANDLE_VALUE), &kGenericVerify, &data);
    }

    void unload() {
        if (mLibrary != nullptr)
            FreeLibrary(mLibrary);
        mLibrary = nullptr;
        mVerifyTrust = nullptr;
    }

    HMODULE mLibrary = nullptr;
    VerifyTrust mVerifyTrust = nullptr;
};

} // namespace

std::unique_ptr<TrustApi> TrustApi::system() {
    return std::make_unique<WindowsTrustApi>();
}

} // namespace orbelantine
