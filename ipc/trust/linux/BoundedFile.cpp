#include "ipc/trust/linux/BoundedFile.h"

#include <fcntl.h>

namespace orbelantine {

namespace {

// A pipe in the file's place must not stop the check.
constexpr int kBoundedOpen = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

} // namespace

std::optional<BoundedFile> BoundedFile::open(const std::string& path, std::size_t limit) {
    return adopt(::open(path.c_str(), kBoundedOpen), limit);
}

std::optional<BoundedFile> BoundedFile::openUnlinked(int folder, const std::string& path,
                                                     std::size_t limit) {
    return adopt(::openat(folder, path.c_str(), kBoundedOpen | O_NOFOLLOW), limit);
}

std::optional<BoundedFile> BoundedFile::adopt(int descriptor, std::size_t limit) {
    BoundedFile file;
    file.mFile = FileDescriptor(descriptor);
    file.mLimit = limit;
    if (!file.mFile || ::fstat(descriptor, &file.mStatus) != 0 || !S_ISREG(file.mStatus.st_mode) ||
        file.mStatus.st_size < 0 || static_cast<std::size_t>(file.mStatus.st_size) > limit)
        return std::nullopt;
    return file;
}

std::optional<std::vector<std::uint8_t>> BoundedFile::read() const {
    // A byte more than there should be, so that growth shows.
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(mStatus.st_size) + 1);
    std::size_t size = 0;
    while (size < bytes.size()) {
        const ssize_t count = ::pread(mFile.get(), bytes.data() + size, bytes.size() - size,
                                      static_cast<off_t>(size));
        if (count < 0)
            return std::nullopt;
        if (count == 0)
            break;
        size += static_cast<std::size_t>(count);
    }
    if (size == bytes.size())
        return std::nullopt;
    bytes.resize(size);
    return bytes;
}

} // namespace orbelantine
