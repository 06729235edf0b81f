#include "ipc/trust/windows/SignerDetails.h"

#include "core/common/log/Log.h"
#include "ipc/trust/SignerSteps.h"
#include "ipc/trust/windows/StepLog.h"

#include <wintrust.h>

#include <bit>
#include <string>

namespace orbelantine {

namespace {

constexpr const char* kPublisherInformation = "1.3.6.1.4.1.311.2.1.12";
constexpr const char* kCounterSignature = "1.2.840.113549.1.9.6";
constexpr const char* kSigningTime = "1.2.840.113549.1.9.5";

/// What the log says of a structure that can't be had.
struct DecodeTexts {
    const char* step;
    const char* sizing;
    const char* memory;
    const char* decoding;
};

constexpr DecodeTexts kPublisherTexts{signer_step::kGetProgAndPublisherInfo, "CryptDecodeObject",
                                      "Unable to allocate memory for Publisher Info",
                                      "CryptDecodeObject"};
constexpr DecodeTexts kTimeStampTexts{
    signer_step::kGetTimeStampSignerInfo,
    "CryptDecodeObject: get size of CMSG_SIGNER_INFO structure",
    "CryptDecodeObject: Unable to allocate memory for timestamp info",
    "CryptDecodeObject: decoding and getting CMSG_SIGNER_INFO structure for timestamp "
    "certificate"};

bool decodeInto(const char* type, const CRYPT_ATTR_BLOB& value, void* structure, DWORD& size) {
    return CryptDecodeObject(kCertEncoding, type, value.pbData, value.cbData, 0, structure,
                             &size) != FALSE;
}

template <class T>
LocalOwner<T> decode(const char* type, const CRYPT_ATTR_BLOB& value, const DecodeTexts& texts) {
    DWORD size = 0;
    if (!decodeInto(type, value, nullptr, size)) {
        logCallFailure(texts.step, texts.sizing);
        return nullptr;
    }
    auto structure = localAlloc<T>(size);
    if (!structure) {
        logStepError(texts.step, texts.memory);
    } else if (!decodeInto(type, value, structure.get(), size)) {
        logCallFailure(texts.step, texts.decoding);
        structure.reset();
    }
    return structure;
}

const wchar_t* textOf(const SPC_LINK* link) {
    const wchar_t* text = nullptr;
    if (link != nullptr && link->dwLinkChoice == SPC_URL_LINK_CHOICE)
        text = link->pwszUrl;
    else if (link != nullptr && link->dwLinkChoice == SPC_FILE_LINK_CHOICE)
        text = link->pwszFile;
    return text != nullptr ? text : L"";
}

bool copyName(const CERT_CONTEXT& certificate, DWORD flags, const char* memory,
              std::wstring& name) {
    const auto get = [&](wchar_t* text, DWORD size) {
        return CertGetNameStringW(&certificate, CERT_NAME_SIMPLE_DISPLAY_TYPE, flags, nullptr, text,
                                  size);
    };
    const DWORD size = get(nullptr, 0);
    const auto text = size != 0 ? localAlloc<wchar_t>(size * sizeof(wchar_t)) : nullptr;
    if (size != 0 && !text) {
        logStepError(signer_step::kGetCertificateInfo, memory);
        return false;
    }
    if (size == 0 || get(text.get(), size) == 0) {
        logStepError(signer_step::kGetCertificateInfo, "CertGetNameString failed");
        return false;
    }
    name = text.get();
    return true;
}

} // namespace

void getProgAndPublisherInfo(const CMSG_SIGNER_INFO& signer, FileEvidence& evidence) {
    const TracedFunction traced(signer_step::kGetProgAndPublisherInfo);
    const CRYPT_ATTRIBUTE* found = findAttribute(signer.AuthAttrs, kPublisherInformation);
    if (found == nullptr)
        return;
    const auto info =
        decode<SPC_SP_OPUS_INFO>(kPublisherInformation, found->rgValue[0], kPublisherTexts);
    if (!info)
        return;
    if (info->pwszProgramName != nullptr)
        evidence.programName = info->pwszProgramName;
    evidence.publisherLink = textOf(info->pPublisherInfo);
    evidence.moreInfoLink = textOf(info->pMoreInfo);
    ORB_LOG_TEXT(kLogDebug, "%s() Program Name : %ls\nPublisher Link : %ls\nMoreInfo Link : %ls.",
                 signer_step::kGetProgAndPublisherInfo, evidence.programName.c_str(),
                 evidence.publisherLink.c_str(), evidence.moreInfoLink.c_str());
}

bool getCertificateInfo(const CERT_CONTEXT& certificate, FileEvidence& evidence) {
    const TracedFunction traced(signer_step::kGetCertificateInfo);
    return copyName(certificate, CERT_NAME_ISSUER_FLAG, "Unable to allocate memory for issuer name",
                    evidence.issuerName) &&
           copyName(certificate, 0, "Unable to allocate memory for subject name",
                    evidence.subjectName);
}

LocalOwner<CMSG_SIGNER_INFO> getTimeStampSignerInfo(const CMSG_SIGNER_INFO& signer) {
    const TracedFunction traced(signer_step::kGetTimeStampSignerInfo);
    const CRYPT_ATTRIBUTE* found = findAttribute(signer.UnauthAttrs, kCounterSignature);
    if (found == nullptr)
        return nullptr;
    return decode<CMSG_SIGNER_INFO>(PKCS7_SIGNER_INFO, found->rgValue[0], kTimeStampTexts);
}

bool getDateOfTimeStamp(const CMSG_SIGNER_INFO& counterSigner, FileEvidence& evidence) {
    const TracedFunction traced(signer_step::kGetDateOfTimeStamp);
    const CRYPT_ATTRIBUTE* found = findAttribute(counterSigner.AuthAttrs, kSigningTime);
    if (found == nullptr)
        return false;
    FILETIME time{};
    DWORD size = sizeof(time);
    if (!decodeInto(kSigningTime, found->rgValue[0], &time, size)) {
        const auto error = static_cast<unsigned>(GetLastError());
        ORB_LOG_TEXT(kLogDebug, "%s() CryptDecodeObject failed with %x.",
                     signer_step::kGetDateOfTimeStamp, error);
        return false;
    }
    FILETIME local{};
    SYSTEMTIME date{};
    if (!FileTimeToLocalFileTime(&time, &local) || !FileTimeToSystemTime(&local, &date))
        return false;
    evidence.timeStamp = std::bit_cast<SystemTime>(date);
    return true;
}

} // namespace orbelantine
