#pragma once

#include "core/common/types/linux/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace orbelantine {

/// Holds a pipe's name for one server, across processes, and within one. The system lets go of it
/// when the process ends.
class PipeLock {
  public:
    /// 231 while another holds it.
    [[nodiscard]] static std::uint32_t take(int folder, const std::string& file, PipeLock& lock);
    /// Whether anybody holds it. Takes nothing.
    [[nodiscard]] static bool isTaken(int folder, const std::string& file);

    /// Removes the file, which is in `folder`, and lets go.
    void release(int folder, const std::string& file);

  private:
    FileDescriptor mFile;
};

} // namespace orbelantine
