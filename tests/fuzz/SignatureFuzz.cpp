// Bytes of any kind as a signature of a program, to which no key of the anchor was ever put.

#include "ipc/trust/linux/CmsSignature.h"
#include "tests/fuzz/Input.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace orbelantine::fuzz {

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes fileOf(const char* name) {
    std::ifstream file(std::string(ORBELANTINE_SIGNED) + '/' + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

BioOwner contentOf(const Bytes& bytes) {
    return BioOwner(BIO_new_mem_buf(bytes.data(), static_cast<int>(bytes.size())));
}

std::uint32_t verify(const Bytes& bytes, const Bytes& content, X509_STORE& anchors) {
    const auto signature = CmsSignature::parse(bytes);
    if (!signature)
        return 1;
    for (std::uint32_t i = 0; i <= CmsSignature::kMostSigners; ++i) {
        const auto names = signature->signer(i);
        ORB_FUZZ_EXPECT(!names || i < CmsSignature::kMostSigners);
        ORB_FUZZ_EXPECT(!names ||
                        std::ranges::none_of(names->subject, [](wchar_t c) { return c < L' '; }));
    }
    return signature->verify(contentOf(content), anchors);
}

struct Machine {
    Bytes content = fileOf("stranger");
    Bytes untrusted = fileOf("stranger.p7s");
    CertificateStore anchors{X509_STORE_new()};

    Machine() {
        X509_STORE_load_file(anchors.get(), ORBELANTINE_SIGNED "/anchors/authority.pem");
        ORB_FUZZ_EXPECT(verify(fileOf("maker.p7s"), fileOf("maker"), *anchors) == 0);
        ORB_FUZZ_EXPECT(refuses(untrusted));
    }

    [[nodiscard]] bool refuses(const Bytes& signature) const {
        return verify(signature, content, *anchors) != 0;
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
    ORB_FUZZ_EXPECT(machine.refuses({data, data + size}));
    Input input(data, size);
    ORB_FUZZ_EXPECT(machine.refuses(changed(machine.untrusted, input)));
    return 0;
}
