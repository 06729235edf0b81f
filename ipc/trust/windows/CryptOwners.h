#pragma once

// clang-format off
#include <windows.h>
#include <wincrypt.h>
// clang-format on

#include <cstddef>
#include <memory>

namespace orbelantine {

/// Owners of what the system's functions for certificates give.
/// @{
struct LocalDelete {
    void operator()(void* memory) const { LocalFree(memory); }
};

template <class T>
using LocalOwner = std::unique_ptr<T, LocalDelete>;

struct CertStoreDelete {
    using pointer = HCERTSTORE;

    void operator()(HCERTSTORE store) const { CertCloseStore(store, 0); }
};

using CertStoreOwner = std::unique_ptr<HCERTSTORE, CertStoreDelete>;

struct CryptMsgDelete {
    using pointer = HCRYPTMSG;

    void operator()(HCRYPTMSG message) const { CryptMsgClose(message); }
};

using CryptMsgOwner = std::unique_ptr<HCRYPTMSG, CryptMsgDelete>;

struct CertContextDelete {
    void operator()(const CERT_CONTEXT* context) const { CertFreeCertificateContext(context); }
};

using CertContextOwner = std::unique_ptr<const CERT_CONTEXT, CertContextDelete>;
/// @}

inline constexpr DWORD kCertEncoding = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING;

/// `size` zeroed bytes, a T at their front; null where there are none to have.
template <class T>
LocalOwner<T> localAlloc(std::size_t size) {
    return LocalOwner<T>(static_cast<T*>(LocalAlloc(LPTR, size)));
}

/// The attribute of that identifier which comes first, and has a value; else null.
inline const CRYPT_ATTRIBUTE* findAttribute(const CRYPT_ATTRIBUTES& attributes,
                                            const char* identifier) {
    for (DWORD i = 0; i < attributes.cAttr; ++i)
        if (lstrcmpA(attributes.rgAttr[i].pszObjId, identifier) == 0)
            return attributes.rgAttr[i].cValue != 0 ? &attributes.rgAttr[i] : nullptr;
    return nullptr;
}

} // namespace orbelantine
