#include "core/common/crash/CExceptionHandler.h"

#include "core/common/crash/ClrCodes.h"
#include "core/common/crash/CrashText.h"
#include "core/common/crash/CrashTraps.h"
#include "core/common/log/Log.h"

#include <algorithm>
#include <utility>

namespace orbelantine {

namespace {

constexpr CrashApi::Error kWaitTimeout = 258;

// A file may hold any numbers; no more than these are gone through.
constexpr std::int64_t kMostSections = 10000;

std::wstring baseName(const std::wstring& path) {
    const auto slash = path.find_last_of(L"\\/:");
    const std::wstring name = slash == std::wstring::npos ? path : path.substr(slash + 1);
    const auto dot = name.rfind(L'.');
    return dot == std::wstring::npos ? name : name.substr(0, dot);
}

} // namespace

CExceptionHandler::CExceptionHandler(bool /*unused*/, bool takeAction)
    : CExceptionHandler(takeAction, CrashApi::system(), CrashStackApi::system()) {}

CExceptionHandler::CExceptionHandler(bool takeAction, CrashApi& api, CrashStackApi& stackApi)
    : mTakeAction(takeAction)
    , mApi(api)
    , mStackApi(stackApi) {}

CExceptionHandler::~CExceptionHandler() {
    UnsetHandler();
    if (mMutex != nullptr)
        mApi.closeMutex(mMutex);
}

bool CExceptionHandler::SetHandler() {
    InitDumpFilePath();
    if (mHandlerSet)
        return true;
    if (mMutex == nullptr) {
        CrashApi::Error error = 0;
        mMutex = mApi.createMutex(
            wideCrashText("Orbelantine:ExceptionHandler:Mutex:0x%x", mApi.processId()), error);
        if (mMutex == nullptr) {
            ORB_LOG(kLogError, "%s: Cannot create mutex. Error = %d", static_cast<int>(error));
            return false;
        }
    }
    if (mApi.tryMutex(mMutex) == kWaitTimeout) {
        ORB_LOG(kLogError, "%s: Another instance of the object already set the handler");
        return false;
    }
    if (!installCrashTraps(*this)) {
        ORB_LOG(kLogError, "%s: no thread can be started to record crashes");
        mApi.releaseMutex(mMutex);
        return false;
    }
    mHandlerSet = true;
    return true;
}

void CExceptionHandler::UnsetHandler() {
    if (!mHandlerSet)
        return;
    removeCrashTraps();
    mHandlerSet = false;
    mApi.releaseMutex(mMutex);
}

void CExceptionHandler::InitDumpFilePath() {
    std::wstring folder = mApi.temporaryFolder();
    if (!folder.empty() && folder.back() != mApi.separator())
        folder += mApi.separator();
    mFile = folder + baseName(mApi.executablePath()) + L".dmpini";
}

std::vector<std::wstring> CExceptionHandler::GetLatestCrashes() {
    InitDumpFilePath();
    std::vector<std::wstring> crashes;
    const std::int64_t first = general(L"first");
    if (first == 0)
        return crashes;
    const std::int64_t last = general(L"last");
    const std::int64_t unsent = general(L"nextSend");
    const std::int64_t begin = unsent != 0 ? unsent : first;
    for (std::int64_t n = std::max(begin, last - kMostSections); n <= last; ++n) {
        const std::wstring section = std::to_wstring(n);
        const std::uint32_t code = mApi.profileInteger(section.c_str(), L"ExceptionCode", mFile);
        if (isClrCode(code))
            ORB_LOG(kLogDebug,
                    "%s() CLR exception %d is ignored (index = %d). Should have already been sent",
                    static_cast<int>(code), static_cast<int>(n));
        else
            appendSection(section, crashes);
    }
    setGeneral(L"nextSend", std::to_wstring(std::max(begin, last + 1)));
    return crashes;
}

void CExceptionHandler::appendSection(const std::wstring& section,
                                      std::vector<std::wstring>& crashes) {
    for (std::wstring& line : mApi.profileSection(section.c_str(), mFile))
        crashes.push_back(std::move(line));
    crashes.emplace_back();
}

std::wstring CExceptionHandler::GetVersion() {
    const auto version = mApi.executableVersion();
    std::wstring text;
    for (std::size_t i = 0; version && i < version->size(); ++i)
        text += (i > 0 ? L"." : L"") + std::to_wstring((*version)[i]);
    return text;
}

void CExceptionHandler::KillProcess() {
    mApi.terminateProcess(1);
}

std::int64_t CExceptionHandler::general(const wchar_t* key) {
    return static_cast<std::int32_t>(mApi.profileInteger(L"general", key, mFile));
}

void CExceptionHandler::setGeneral(const wchar_t* key, const std::wstring& value) {
    mApi.writeProfile(L"general", key, value.c_str(), mFile);
}

} // namespace orbelantine
