#include "ipc/trust/windows/SignerMessage.h"

#include "core/common/log/Log.h"
#include "ipc/trust/NestedSignature.h"
#include "ipc/trust/SignerSteps.h"
#include "ipc/trust/windows/StepLog.h"

#include <optional>
#include <utility>
#include <vector>

namespace orbelantine {

namespace {

using SignerInfo = LocalOwner<CMSG_SIGNER_INFO>;

bool getSignerInfo(HCRYPTMSG message, CMSG_SIGNER_INFO* signer, DWORD& size) {
    if (CryptMsgGetParam(message, CMSG_SIGNER_INFO_PARAM, 0, signer, &size))
        return true;
    logCallFailure(signer_step::kCheckCertificate, "CryptMsgGetParam");
    return false;
}

SignerInfo signerOf(HCRYPTMSG message) {
    DWORD size = 0;
    if (!getSignerInfo(message, nullptr, size))
        return nullptr;
    auto signer = localAlloc<CMSG_SIGNER_INFO>(size);
    if (!signer)
        logStepError(signer_step::kCheckCertificate, "Unable to allocate memory for Signer Info");
    else if (!getSignerInfo(message, signer.get(), size))
        signer.reset();
    return signer;
}

CryptMsgOwner decodeMessage(const CRYPT_ATTR_BLOB& value) {
    CryptMsgOwner message(CryptMsgOpenToDecode(kCertEncoding, 0, 0, 0, nullptr, nullptr));
    if (!message || !CryptMsgUpdate(message.get(), value.pbData, value.cbData, TRUE)) {
        logCallFailure(signer_step::kCheckCertificate,
                       message ? "CryptMsgUpdate" : "CryptMsgOpenToDecode");
        message.reset();
    }
    return message;
}

SignerInfo nestedSigner(const CRYPT_ATTRIBUTES& attributes, std::uint32_t index) {
    std::vector<SignerAttribute> shapes;
    for (DWORD i = 0; i < attributes.cAttr; ++i)
        shapes.push_back({attributes.rgAttr[i].pszObjId, attributes.rgAttr[i].cValue});
    const auto place = findNestedSignature(shapes, index);
    if (!place)
        return nullptr;
    const CryptMsgOwner message =
        decodeMessage(attributes.rgAttr[place->attribute].rgValue[place->value]);
    return message ? signerOf(message.get()) : nullptr;
}

} // namespace

SignerMessage SignerMessage::read(const std::wstring& path, std::uint32_t index) {
    DWORD encoding = 0;
    DWORD contentType = 0;
    DWORD formatType = 0;
    HCERTSTORE store = nullptr;
    HCRYPTMSG opened = nullptr;
    if (!CryptQueryObject(CERT_QUERY_OBJECT_FILE, path.c_str(),
                          CERT_QUERY_CONTENT_FLAG_PKCS7_SIGNED_EMBED, CERT_QUERY_FORMAT_FLAG_BINARY,
                          0, &encoding, &contentType, &formatType, &store, &opened, nullptr)) {
        logCallFailure(signer_step::kCheckCertificate, "CryptQueryObject");
        return {};
    }
    const CryptMsgOwner message(opened);
    SignerMessage read{CertStoreOwner(store), signerOf(message.get())};
    if (read.signer && index > 0)
        read.signer = nestedSigner(read.signer->UnauthAttrs, index);
    return read;
}

CertContextOwner SignerMessage::certificate() const {
    CERT_INFO wanted{};
    wanted.Issuer = signer->Issuer;
    wanted.SerialNumber = signer->SerialNumber;
    CertContextOwner found(CertFindCertificateInStore(store.get(), kCertEncoding, 0,
                                                      CERT_FIND_SUBJECT_CERT, &wanted, nullptr));
    if (!found) {
        const auto error = static_cast<unsigned>(GetLastError());
        ORB_LOG_TEXT(kLogError, "%s() CertFindCertificateInStore failed with %x",
                     signer_step::kCheckCertificate, error);
    }
    return found;
}

} // namespace orbelantine
