#pragma once

#include "core/common/protect/ProtectionApi.h"
#include "core/common/protect/linux/KeyFile.h"

#include <string>

namespace orbelantine {

/// AES-256-GCM with a key of the user's or of the machine's. A blob says which; one that was
/// changed, cut or made with another key is refused whole.
class LinuxProtectionApi final : public ProtectionApi {
  public:
    /// `machineFolder`: where root keeps the machine's key. A process of root's belongs to no
    /// user's session where root has made that folder.
    LinuxProtectionApi(const std::string& userFolder, std::string machineFolder);

    [[nodiscard]] Error protect(const Bytes& plain, std::uint32_t flags, Bytes& blob) override;
    [[nodiscard]] Error unprotect(const Bytes& blob, Bytes& plain) override;
    [[nodiscard]] std::uint32_t sessionId() override;
    void copy(unsigned char* to, const char* from, std::size_t size) override;

  private:
    std::string mMachineFolder;
    KeyFile mUserKey;
    KeyFile mMachineKey;
};

/// Where a user's key is: "Kessa/KessaBrevon" below $XDG_DATA_HOME, else below ~/.local/share.
[[nodiscard]] std::string userKeyFolder();

inline constexpr const char* kMachineKeyFolder = "/etc/orbelantine/protection";

} // namespace orbelantine
