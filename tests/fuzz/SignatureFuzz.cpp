// Bytes of any kind as a signature of a program, to which no key of the anchor was ever put.

#include "ipc/trust/linux/CmsSignature.h"
#include "tests/fuzz/Input.h"

#include <openssl/evp.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

namespace orbelantine::fuzz {

namespace {

using Bytes = std::vector<std::uint8_t>;
using Key = std::unique_ptr<EVP_PKEY, OpenSslDelete<EVP_PKEY_free>>;

constexpr std::string_view kContent = "a program";

BioOwner content() {
    return BioOwner(BIO_new_mem_buf(kContent.data(), static_cast<int>(kContent.size())));
}

/// A certificate of its own, with its key.
struct Signer {
    Key key{EVP_PKEY_Q_keygen(nullptr, nullptr, "RSA", std::size_t{2048})};
    CertificateOwner certificate{X509_new()};

    explicit Signer(const char* name) {
        X509* made = certificate.get();
        X509_set_version(made, X509_VERSION_3);
        ASN1_INTEGER_set(X509_get_serialNumber(made), 1);
        X509_gmtime_adj(X509_getm_notBefore(made), -3600);
        X509_gmtime_adj(X509_getm_notAfter(made), 1L << 30);
        X509_NAME_add_entry_by_txt(X509_get_subject_name(made), "CN", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
        X509_set_issuer_name(made, X509_get_subject_name(made));
        X509_set_pubkey(made, key.get());
        X509_sign(made, key.get(), EVP_sha256());
    }

    [[nodiscard]] Bytes sign() const {
        const BioOwner text = content();
        const CmsOwner cms(
            CMS_sign(certificate.get(), key.get(), nullptr, text.get(), CMS_DETACHED | CMS_BINARY));
        unsigned char* der = nullptr;
        const int size = i2d_CMS_ContentInfo(cms.get(), &der);
        ORB_FUZZ_EXPECT(size > 0);
        Bytes bytes(der, der + size);
        OPENSSL_free(der);
        return bytes;
    }
};

std::uint32_t verify(const Bytes& bytes, X509_STORE& anchors) {
    const auto signature = CmsSignature::parse(bytes);
    if (!signature)
        return 1;
    for (std::uint32_t i = 0; i <= CmsSignature::kMostSigners; ++i) {
        const auto names = signature->signer(i);
        ORB_FUZZ_EXPECT(!names || i < CmsSignature::kMostSigners);
        ORB_FUZZ_EXPECT(!names ||
                        std::ranges::none_of(names->subject, [](wchar_t c) { return c < L' '; }));
    }
    return signature->verify(content(), anchors);
}

struct Machine {
    Signer known{"Known"};
    Signer stranger{"Known"};
    Bytes trusted = known.sign();
    Bytes untrusted = stranger.sign();
    CertificateStore anchors{X509_STORE_new()};

    Machine() {
        X509_STORE_add_cert(anchors.get(), known.certificate.get());
        ORB_FUZZ_EXPECT(verify(trusted, *anchors) == 0);
        ORB_FUZZ_EXPECT(verify(untrusted, *anchors) != 0);
    }
};

/// The stranger's signature with bytes replaced, left out or put in.
Bytes changed(Bytes bytes, Input& input) {
    while (!input.empty()) {
        const std::size_t at = (input.byte() * 256U + input.byte()) % bytes.size();
        const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        const std::uint8_t value = input.byte();
        switch (input.byte() % 4) {
        case 0:
            bytes.insert(place, value);
            break;
        case 1:
            if (bytes.size() > 1)
                bytes.erase(place);
            break;
        default:
            *place = value;
        }
    }
    return bytes;
}

} // namespace

} // namespace orbelantine::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orbelantine::fuzz;
    static const Machine machine;
    ORB_FUZZ_EXPECT(verify({data, data + size}, *machine.anchors) != 0);
    Input input(data, size);
    ORB_FUZZ_EXPECT(verify(changed(machine.untrusted, input), *machine.anchors) != 0);
    return 0;
}
