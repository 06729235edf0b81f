#pragma once

// What reads PEM is declared for the kinds of objects whose headers come later.
// clang-format off
#include <openssl/pem.h>
#include <openssl/cms.h>
// clang-format on
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/x509.h>

#include <memory>

namespace orbelantine {

template <auto Free>
struct OpenSslDelete {
    template <class T>
    void operator()(T* object) const {
        Free(object);
    }
};

/// Owners of libcrypto's objects.
/// @{
using BioOwner = std::unique_ptr<BIO, OpenSslDelete<BIO_free_all>>;
using CmsOwner = std::unique_ptr<CMS_ContentInfo, OpenSslDelete<CMS_ContentInfo_free>>;
using CertificateOwner = std::unique_ptr<X509, OpenSslDelete<X509_free>>;
using CertificateStore = std::unique_ptr<X509_STORE, OpenSslDelete<X509_STORE_free>>;

/// @}

/// For what reads PEM, which would ask at the terminal otherwise.
inline int noPassword(char* /*text*/, int /*size*/, int /*writing*/, void* /*context*/) {
    return -1;
}

/// Leaves the thread's list of libcrypto's errors as it was.
class OpenSslErrors {
  public:
    OpenSslErrors() { ERR_set_mark(); }

    ~OpenSslErrors() { ERR_pop_to_mark(); }

    OpenSslErrors(const OpenSslErrors&) = delete;
    OpenSslErrors& operator=(const OpenSslErrors&) = delete;
};

} // namespace orbelantine
