#include "ipc/trust/linux/CertificateNames.h"

#include <boost/nowide/convert.hpp>
#include <openssl/crypto.h>
#include <openssl/objects.h>

#include <algorithm>
#include <memory>

namespace orbelantine {

namespace {

constexpr int kNameParts[] = {NID_commonName, NID_organizationalUnitName, NID_organizationName,
                              NID_pkcs9_emailAddress};

using Utf8 =
    std::unique_ptr<unsigned char, decltype([](unsigned char* text) { OPENSSL_free(text); })>;

std::optional<std::wstring> textOf(const X509_NAME* name, int position) {
    unsigned char* bytes = nullptr;
    const int size =
        ASN1_STRING_to_UTF8(&bytes, X509_NAME_ENTRY_get_data(X509_NAME_get_entry(name, position)));
    if (size < 0)
        return std::nullopt;
    const Utf8 owner(bytes);
    std::wstring text = boost::nowide::widen(std::string(bytes, bytes + size));
    // A null would hide the rest of the name from whoever reads the log.
    if (std::ranges::any_of(text, [](wchar_t c) { return c < L' '; }))
        return std::nullopt;
    return text;
}

} // namespace

std::optional<std::wstring> simpleName(const X509_NAME* name) {
    for (const int part : kNameParts) {
        const int position = X509_NAME_get_index_by_NID(name, part, -1);
        if (position >= 0)
            return textOf(name, position);
    }
    return std::nullopt;
}

} // namespace orbelantine
