#pragma once

#include <unistd.h>

namespace orbelantine {

/// Owns a file descriptor.
class FileDescriptor {
  public:
    explicit FileDescriptor(int fd)
        : mFd(fd) {}

    ~FileDescriptor() {
        if (mFd >= 0)
            ::close(mFd);
    }

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] int get() const { return mFd; }

  private:
    const int mFd;
};

} // namespace orbelantine
