// A protected file of any bytes is refused whole; one that was written and then changed as well.

#include "core/common/protect/linux/LinuxProtectionApi.h"
#include "tests/fuzz/Input.h"

#include <cstdlib>
#include <string>

namespace {

orbelantine::LinuxProtectionApi& api() {
    static std::string folder = "/tmp/orbelantine-fuzz-XXXXXX";
    static orbelantine::LinuxProtectionApi made(::mkdtemp(folder.data()), folder + "/machine");
    return made;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Bytes = orbelantine::ProtectionApi::Bytes;
    const Bytes given(data, data + size);
    Bytes read;
    ORB_FUZZ_EXPECT(api().unprotect(given, read) != 0 && read.empty());
    Bytes blob;
    ORB_FUZZ_EXPECT(api().protect(given, 0, blob) == 0);
    ORB_FUZZ_EXPECT(api().unprotect(blob, read) == 0 && read == given);
    for (std::size_t i = 0; i < size && i < blob.size(); ++i)
        if (data[i] != 0) {
            blob[i] ^= data[i];
            Bytes nothing;
            ORB_FUZZ_EXPECT(api().unprotect(blob, nothing) != 0 && nothing.empty());
            blob[i] ^= data[i];
        }
    return 0;
}
