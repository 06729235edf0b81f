#pragma once

#include "ipc/trust/linux/OpenSsl.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace orbelantine {

/// A detached CMS signature. Names and trust are those of the same certificates: each signer's is
/// chosen once, when the signature is read. One thread uses an object.
class CmsSignature {
  public:
    struct Names {
        std::wstring subject;
        std::wstring issuer;
    };

    /// More signers than anyone needs are refused, since each costs time.
    static constexpr int kMostSigners = 16;
    static constexpr std::size_t kLargestContent = std::size_t{1} << 30;

    /// From DER or PEM; nothing where the bytes are no detached signature.
    [[nodiscard]] static std::optional<CmsSignature> parse(std::span<const std::uint8_t> bytes);

    /// Who signed, whether or not it is true. Nothing for a signer that is not there, or whose
    /// certificate or name is not.
    [[nodiscard]] std::optional<Names> signer(std::uint32_t index) const;

    /// 0 where every signer signed `content` and is trusted now by one of `anchors` to sign code;
    /// else a number of `trust`.
    [[nodiscard]] std::uint32_t verify(BioOwner content, X509_STORE& anchors) const;

  private:
    explicit CmsSignature(CmsOwner cms);

    [[nodiscard]] bool isSignature() const;

    CmsOwner mCms;
    // Those of mCms.
    STACK_OF(CMS_SignerInfo) * mSigners;
};

} // namespace orbelantine
