#pragma once

#include "core/common/protect/ProtectionApi.h"

#include <sys/types.h>

#include <array>
#include <string>

namespace orbelantine {

/// A key of 32 bytes in a file of its own, made of random bytes when first needed.
class KeyFile {
  public:
    using Key = std::array<unsigned char, 32>;

    /// `mode`: who may read the file. It belongs to `owner`, who alone may write. A missing folder
    /// is made for a key that nobody else may read.
    KeyFile(std::string folder, mode_t mode, uid_t owner);

    /// The errors are Windows': 2 if there is no key, 5 if somebody else may have written it or may
    /// read it, 13 if it is none.
    [[nodiscard]] ProtectionApi::Error read(Key& key) const;
    /// The same, after making the key if there is none. Of processes that do so at once each gets
    /// the same one.
    [[nodiscard]] ProtectionApi::Error readOrMake(Key& key) const;

  private:
    [[nodiscard]] ProtectionApi::Error make() const;

    std::string mFolder;
    std::string mPath;
    mode_t mMode;
    uid_t mOwner;
};

} // namespace orbelantine
