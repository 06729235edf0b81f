#pragma once

#include "ipc/pipe/PipeName.h"

#include <string>

namespace orbelantine::test {

/// Where a test's pipes are, apart from those of others.
class PipeFolder {
  public:
    PipeFolder();
    ~PipeFolder();
    PipeFolder(const PipeFolder&) = delete;
    PipeFolder& operator=(const PipeFolder&) = delete;

    /// A name for one pipe, that no other process has.
    [[nodiscard]] const std::string& uniqueName() const { return mName; }

    [[nodiscard]] std::string fullName() const { return kPipeNamePrefix + mName; }

  private:
    std::string mHome;
    std::string mName;
};

} // namespace orbelantine::test
