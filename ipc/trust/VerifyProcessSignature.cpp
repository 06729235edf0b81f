#include "ipc/trust/VerifyProcessSignature.h"

#include "core/common/log/Log.h"

#include <algorithm>
#include <cstddef>
#include <regex>
#include <utility>

namespace orbelantine {

namespace {

constexpr const char* kVerify = "orbelantine::VerifyProcessSignature::verify";

/// A longer name is nobody's: whoever made the file chose it, and the search goes as deep into the
/// stack as the name is long.
constexpr std::size_t kLongestSubject = 256;

bool matches(const std::wstring& subject, const std::wstring& expression) {
    try {
        const std::wregex compiled(expression, std::regex::ECMAScript | std::regex::icase);
        return std::regex_search(subject, compiled);
    } catch (const std::regex_error& e) {
        ORB_LOG_TEXT(kLogDebug, "%s() regext error: %s.", kVerify, e.what());
        return false;
    }
}

bool matchesAny(const std::wstring& subject, const std::vector<std::wstring>& expressions) {
    return subject.size() <= kLongestSubject &&
           std::ranges::any_of(expressions,
                               [&](const std::wstring& e) { return matches(subject, e); });
}

/// Null for a result that says more than that there is no signature.
const wchar_t* nameOfUnsigned(std::uint32_t result) {
    switch (result) {
    case trust::kNoSignature:
        return L"TRUST_E_NOSIGNATURE";
    case trust::kSubjectFormUnknown:
        return L"TRUST_E_SUBJECT_FORM_UNKNOWN";
    default:
        return nullptr;
    }
}

} // namespace

VerifyProcessSignature::VerifyProcessSignature(std::unique_ptr<TrustApi> api)
    : mApi(std::move(api)) {}

VerifyProcessSignature::~VerifyProcessSignature() {
    uninitializeWinTrustDll();
}

bool VerifyProcessSignature::verify(const std::wstring& filePath, const std::wstring& signerNames,
                                    const std::wstring& delimiter) {
    if (!mReady && !initializeWinTrustDll())
        return false;
    mEvidence = std::make_unique<FileEvidence>();
    mEvidence->filePath = filePath;
    std::vector<std::wstring> expressions;
    if (!signerNames.empty())
        Split(signerNames, delimiter, expressions);
    for (std::uint32_t index = 0; checkCertificate(filePath, index); ++index) {
        if (!matchesAny(mEvidence->subjectName, expressions))
            continue;
        ORB_LOG(kLogDebug, "%s() found signer name.");
        return verifyCertificate(filePath);
    }
    ORB_LOG(kLogDebug, "%s() File %ls doesn't have or has invalid certificate.", filePath.c_str());
    return false;
}

bool VerifyProcessSignature::getFileEvidence(FileEvidence& out) const {
    if (!mEvidence)
        return false;
    out = *mEvidence;
    return true;
}

void VerifyProcessSignature::Split(const std::wstring& text, const std::wstring& delimiter,
                                   std::vector<std::wstring>& parts) {
    parts.clear();
    if (delimiter.empty()) {
        parts.push_back(text);
        return;
    }
    std::size_t from = 0;
    for (std::size_t hit = text.find(delimiter); hit != std::wstring::npos;
         hit = text.find(delimiter, from)) {
        if (hit != from)
            parts.push_back(text.substr(from, hit - from));
        from = hit + delimiter.size();
        if (from == text.size())
            return;
    }
    parts.push_back(text.substr(from));
}

bool VerifyProcessSignature::initializeWinTrustDll() {
    ORB_TRACED();
    mReady = mApi->initialize();
    return mReady;
}

void VerifyProcessSignature::uninitializeWinTrustDll() {
    ORB_TRACED();
    if (std::exchange(mReady, false))
        mApi->uninitialize();
}

bool VerifyProcessSignature::checkCertificate(const std::wstring& path, std::uint32_t index) {
    ORB_TRACED();
    if (!mEvidence || path.empty()) {
        ORB_LOG_TEXT(kLogWarning, "can't check cert, evidence:%p, filepath:%p.",
                     static_cast<const void*>(mEvidence.get()),
                     static_cast<const void*>(path.empty() ? nullptr : path.c_str()));
        return false;
    }
    mEvidence->hasCertificate = false;
    mEvidence->hasCertificate = mApi->readSigner(path, index, *mEvidence);
    return mEvidence->hasCertificate;
}

bool VerifyProcessSignature::verifyCertificate(const std::wstring& path) {
    ORB_TRACED();
    if (!mEvidence || path.empty())
        return false;
    const std::uint32_t result = mApi->verifyTrust(path);
    mEvidence->trustResult = result;
    mEvidence->signatureVerified = result == 0;
    if (result == 0) {
        ORB_LOG(kLogDebug, "%s() The file %ls is signed and the signature was verified.",
                path.c_str());
    } else if (const wchar_t* name = nameOfUnsigned(result)) {
        mEvidence->hasCertificate = false;
        ORB_LOG(kLogDebug, "%s() The file %ls is not signed. (%ls)", path.c_str(), name);
    } else {
        ORB_LOG(kLogError,
                "%s() An error (0x%x) occurred trying to verify the signature of the file %ls.",
                result, path.c_str());
    }
    return mEvidence->signatureVerified;
}

} // namespace orbelantine
