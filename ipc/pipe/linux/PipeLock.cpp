#include "ipc/pipe/linux/PipeLock.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace orbelantine {

namespace {

struct flock wholeFile() {
    struct flock range {};

    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    return range;
}

// The one before us may have removed the file that we opened, and a third made it anew.
bool isStillThere(int file, int folder, const std::string& name) {
    struct stat ours {};

    struct stat named {};

    return ::fstat(file, &ours) == 0 &&
           ::fstatat(folder, name.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
           ours.st_dev == named.st_dev && ours.st_ino == named.st_ino;
}

} // namespace

std::uint32_t PipeLock::take(int folder, const std::string& file, PipeLock& lock) {
    for (;;) {
        constexpr int kFlags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
        FileDescriptor opened(::openat(folder, file.c_str(), kFlags, 0600));
        if (!opened)
            return errno == EISDIR || errno == ELOOP ? win32::kErrorAccessDenied
                                                     : windowsError(errno);
        struct flock range = wholeFile();
        if (::fcntl(opened.get(), F_OFD_SETLK, &range) != 0)
            return errno == EAGAIN || errno == EACCES ? win32::kErrorPipeBusy : windowsError(errno);
        if (isStillThere(opened.get(), folder, file)) {
            lock.mFile = std::move(opened);
            return win32::kErrorSuccess;
        }
    }
}

bool PipeLock::isTaken(int folder, const std::string& file) {
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
    const FileDescriptor opened(::openat(folder, file.c_str(), kFlags));
    struct flock range = wholeFile();
    return opened && ::fcntl(opened.get(), F_OFD_GETLK, &range) == 0 && range.l_type != F_UNLCK;
}

void PipeLock::release(int folder, const std::string& file) {
    if (!mFile)
        return;
    ::unlinkat(folder, file.c_str(), 0);
    mFile = {};
}

} // namespace orbelantine
