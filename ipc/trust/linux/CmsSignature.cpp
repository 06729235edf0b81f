#include "ipc/trust/linux/CmsSignature.h"

#include "ipc/trust/FileEvidence.h"
#include "ipc/trust/linux/CertificateNames.h"
#include "ipc/trust/linux/CertificateTrust.h"

#include <openssl/evp.h>

#include <array>
#include <climits>
#include <memory>
#include <utility>

namespace orbelantine {

namespace {

using CertificateStack =
    std::unique_ptr<STACK_OF(X509), decltype([](STACK_OF(X509) * certificates) {
                        sk_X509_pop_free(certificates, X509_free);
                    })>;

/// Those that can't be made to fit another file.
constexpr std::array kDigests = {NID_sha256, NID_sha384, NID_sha512};

CmsOwner readCms(std::span<const std::uint8_t> bytes) {
    if (bytes.empty() || bytes.size() > INT_MAX)
        return nullptr;
    const int size = static_cast<int>(bytes.size());
    const BioOwner der(BIO_new_mem_buf(bytes.data(), size));
    if (CmsOwner cms{d2i_CMS_bio(der.get(), nullptr)})
        return cms;
    const BioOwner pem(BIO_new_mem_buf(bytes.data(), size));
    return CmsOwner(PEM_read_bio_CMS(pem.get(), nullptr, noPassword, nullptr));
}

X509* certificateOf(CMS_SignerInfo* signer) {
    X509* certificate = nullptr;
    CMS_SignerInfo_get0_algs(signer, nullptr, &certificate, nullptr, nullptr);
    return certificate;
}

int digestOf(CMS_SignerInfo* signer) {
    X509_ALGOR* algorithm = nullptr;
    CMS_SignerInfo_get0_algs(signer, nullptr, nullptr, &algorithm, nullptr);
    const ASN1_OBJECT* object = nullptr;
    X509_ALGOR_get0(&object, nullptr, nullptr, algorithm);
    return OBJ_obj2nid(object);
}

/// The content, with the digests ahead of it that its signers took. CMS_verify would take every
/// digest that the signature lists, of which there may be thousands.
BioOwner digestsOf(BioOwner content, STACK_OF(CMS_SignerInfo) * signers) {
    for (const int digest : kDigests) {
        bool used = false;
        for (int i = 0; i < sk_CMS_SignerInfo_num(signers); ++i)
            used = used || digestOf(sk_CMS_SignerInfo_value(signers, i)) == digest;
        if (!used)
            continue;
        BioOwner filter(BIO_new(BIO_f_md()));
        if (!filter || BIO_set_md(filter.get(), EVP_get_digestbynid(digest)) != 1)
            return nullptr;
        BIO_push(filter.get(), content.release());
        content = std::move(filter);
    }
    return content;
}

bool readToEnd(BIO& chain) {
    std::array<char, 65536> part{};
    std::size_t size = 0;
    int count = 0;
    do {
        count = BIO_read(&chain, part.data(), static_cast<int>(part.size()));
        size += count > 0 ? static_cast<std::size_t>(count) : 0;
    } while (count > 0 && size <= CmsSignature::kLargestContent);
    return count == 0;
}

/// Without signed attributes a signature could have been made for another purpose.
bool hasSigned(CMS_SignerInfo* signer, BIO& digests) {
    return certificateOf(signer) != nullptr && CMS_signed_get_attr_count(signer) > 0 &&
           CMS_SignerInfo_verify(signer) == 1 &&
           CMS_SignerInfo_verify_content(signer, &digests) == 1;
}

} // namespace

CmsSignature::CmsSignature(CmsOwner cms)
    : mCms(std::move(cms))
    , mSigners(CMS_get0_SignerInfos(mCms.get())) {}

bool CmsSignature::isSignature() const {
    const int signers = mSigners == nullptr ? 0 : sk_CMS_SignerInfo_num(mSigners);
    return signers > 0 && signers <= kMostSigners && CMS_is_detached(mCms.get()) == 1 &&
           OBJ_obj2nid(CMS_get0_eContentType(mCms.get())) == NID_pkcs7_data;
}

std::optional<CmsSignature> CmsSignature::parse(std::span<const std::uint8_t> bytes) {
    const OpenSslErrors errors;
    CmsOwner cms = readCms(bytes);
    if (!cms || OBJ_obj2nid(CMS_get0_type(cms.get())) != NID_pkcs7_signed)
        return std::nullopt;
    CmsSignature signature(std::move(cms));
    if (!signature.isSignature() || CMS_set1_signers_certs(signature.mCms.get(), nullptr, 0) < 0)
        return std::nullopt;
    return signature;
}

std::optional<CmsSignature::Names> CmsSignature::signer(std::uint32_t index) const {
    const OpenSslErrors errors;
    if (index >= static_cast<std::uint32_t>(sk_CMS_SignerInfo_num(mSigners)))
        return std::nullopt;
    X509* certificate = certificateOf(sk_CMS_SignerInfo_value(mSigners, static_cast<int>(index)));
    if (certificate == nullptr)
        return std::nullopt;
    auto subject = simpleName(X509_get_subject_name(certificate));
    auto issuer = simpleName(X509_get_issuer_name(certificate));
    if (!subject || !issuer)
        return std::nullopt;
    return Names{std::move(*subject), std::move(*issuer)};
}

std::uint32_t CmsSignature::verify(BioOwner content, X509_STORE& anchors) const {
    const OpenSslErrors errors;
    const BioOwner digests = digestsOf(std::move(content), mSigners);
    if (!digests || !readToEnd(*digests))
        return trust::kBadDigest;
    const CertificateStack others(CMS_get1_certs(mCms.get()));
    for (int i = 0; i < sk_CMS_SignerInfo_num(mSigners); ++i) {
        CMS_SignerInfo* signer = sk_CMS_SignerInfo_value(mSigners, i);
        if (!hasSigned(signer, *digests))
            return trust::kBadDigest;
    }
    for (int i = 0; i < sk_CMS_SignerInfo_num(mSigners); ++i) {
        X509* certificate = certificateOf(sk_CMS_SignerInfo_value(mSigners, i));
        if (const std::uint32_t result = codeSigningTrust(*certificate, others.get(), anchors))
            return result;
    }
    return 0;
}

} // namespace orbelantine
