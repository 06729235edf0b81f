#pragma once

#include <unistd.h>

#include <utility>

namespace orbelantine {

/// Owns one descriptor; -1 when empty.
class FileDescriptor {
  public:
    FileDescriptor() = default;

    explicit FileDescriptor(int descriptor)
        : mDescriptor(descriptor) {}

    FileDescriptor(FileDescriptor&& other) noexcept
        : mDescriptor(std::exchange(other.mDescriptor, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }

    ~FileDescriptor() {
        if (mDescriptor >= 0)
            ::close(mDescriptor);
    }

    [[nodiscard]] int get() const { return mDescriptor; }

    [[nodiscard]] explicit operator bool() const { return mDescriptor >= 0; }

  private:
    int mDescriptor = -1;
};

} // namespace orbelantine
