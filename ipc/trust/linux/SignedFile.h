#pragma once

#include "ipc/trust/linux/BoundedFile.h"
#include "ipc/trust/linux/CmsSignature.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace orbelantine {

/// An executable and the signature beside it, "<its path>.p7s": both are opened once, so that all
/// that is said is said of the same two files.
class SignedFile {
  public:
    static constexpr std::size_t kLargestSignature = std::size_t{1} << 20;

    /// `path` may be "/proc/self/fd/<number>": the file that is open there, whose path is then what
    /// the system says of it. Nothing where there is no signature; the log has the reason.
    [[nodiscard]] static std::optional<SignedFile> open(const std::string& path);

    [[nodiscard]] const CmsSignature& signature() const { return mSignature; }

    [[nodiscard]] std::uint32_t verify(X509_STORE& anchors) const;

  private:
    SignedFile(BoundedFile executable, CmsSignature signature);

    BoundedFile mExecutable;
    CmsSignature mSignature;
};

} // namespace orbelantine
