#include "core/common/protect/ProtectionApi.h"

// clang-format off
#include <windows.h>
#include <dpapi.h>
// clang-format on

#include <cstring>

namespace orbelantine {

namespace {

DATA_BLOB asBlob(const ProtectionApi::Bytes& bytes) {
    return {static_cast<DWORD>(bytes.size()), const_cast<BYTE*>(bytes.data())};
}

/// What the system has allocated becomes `bytes`.
void take(DATA_BLOB& output, ProtectionApi::Bytes& bytes) {
    bytes.assign(output.pbData, output.pbData + output.cbData);
    LocalFree(output.pbData);
}

class WindowsProtectionApi final : public ProtectionApi {
  public:
    [[nodiscard]] Error protect(const Bytes& plain, std::uint32_t flags, Bytes& blob) override {
        DATA_BLOB input = asBlob(plain);
        DATA_BLOB output{};
        if (CryptProtectData(&input, nullptr, nullptr, nullptr, nullptr, flags, &output) == FALSE)
            return GetLastError();
        take(output, blob);
        return ERROR_SUCCESS;
    }

    [[nodiscard]] Error unprotect(const Bytes& blob, Bytes& plain) override {
        DATA_BLOB input = asBlob(blob);
        DATA_BLOB output{};
        if (CryptUnprotectData(&input, nullptr, nullptr, nullptr, nullptr, 0, &output) == FALSE)
            return GetLastError();
        take(output, plain);
        return ERROR_SUCCESS;
    }

    [[nodiscard]] std::uint32_t sessionId() override {
        DWORD id = 0;
        (void)ProcessIdToSessionId(GetCurrentProcessId(), &id);
        return id;
    }

    void copy(unsigned char* to, const char* from, std::size_t size) override {
        (void)memcpy_s(to, size, from, size);
    }
};

} // namespace

ProtectionApi& ProtectionApi::system() {
    static WindowsProtectionApi api;
    return api;
}

} // namespace orbelantine
