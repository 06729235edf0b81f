#include "ipc/trust/linux/CertificateTrust.h"

#include "ipc/trust/FileEvidence.h"
#include "ipc/trust/linux/OpenSsl.h"

#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <cstdint>
#include <memory>

namespace orbelantine {

namespace {

using ChainCheck = std::unique_ptr<X509_STORE_CTX, OpenSslDelete<X509_STORE_CTX_free>>;

/// Keys and digests worth 112 bits: no SHA-1, no RSA below 2,048 bits.
constexpr int kSecurityLevel = 2;

std::uint32_t trustOf(int chainError) {
    switch (chainError) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return trust::kExpired;
    default:
        return trust::kUntrustedRoot;
    }
}

bool maySignCode(X509* certificate) {
    const std::uint32_t usage = X509_get_extended_key_usage(certificate);
    return usage == UINT32_MAX || (usage & XKU_CODE_SIGN) != 0;
}

/// One that says what it is for says so for all that it issues.
bool isForCode(STACK_OF(X509) * chain) {
    for (int i = 0; i < sk_X509_num(chain); ++i)
        if (!maySignCode(sk_X509_value(chain, i)))
            return false;
    return (X509_get_key_usage(sk_X509_value(chain, 0)) & KU_DIGITAL_SIGNATURE) != 0;
}

} // namespace

std::uint32_t codeSigningTrust(X509& certificate, STACK_OF(X509) * others, X509_STORE& anchors) {
    const ChainCheck check(X509_STORE_CTX_new());
    if (!check || X509_STORE_CTX_init(check.get(), &anchors, &certificate, others) != 1)
        return trust::kUntrustedRoot;
    // OpenSSL 3.0 has no purpose for signing code: isForCode looks at that.
    X509_VERIFY_PARAM_set_auth_level(X509_STORE_CTX_get0_param(check.get()), kSecurityLevel);
    if (X509_verify_cert(check.get()) != 1)
        return trustOf(X509_STORE_CTX_get_error(check.get()));
    return isForCode(X509_STORE_CTX_get0_chain(check.get())) ? 0 : trust::kWrongUsage;
}

} // namespace orbelantine
