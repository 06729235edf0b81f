#pragma once

#include "core/common/types/linux/FileDescriptor.h"

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orbelantine {

/// A regular file of limited size, open for reading.
class BoundedFile {
  public:
    /// Nothing for another kind of file, or a larger one. Links are followed by `open` alone;
    /// `folder` may be AT_FDCWD.
    /// @{
    [[nodiscard]] static std::optional<BoundedFile> open(const std::string& path,
                                                         std::size_t limit);
    [[nodiscard]] static std::optional<BoundedFile>
    openUnlinked(int folder, const std::string& path, std::size_t limit);

    /// @}

    [[nodiscard]] const struct stat& status() const { return mStatus; }

    [[nodiscard]] int descriptor() const { return mFile.get(); }

    /// All of it; nothing where it has grown beyond the limit or can't be read.
    [[nodiscard]] std::optional<std::vector<std::uint8_t>> read() const;

  private:
    [[nodiscard]] static std::optional<BoundedFile> adopt(int descriptor, std::size_t limit);

    FileDescriptor mFile;

    struct stat mStatus {};

    std::size_t mLimit = 0;
};

} // namespace orbelantine
