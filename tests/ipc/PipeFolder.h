#pragma once

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

  private:
    std::string mFolder;
    std::string mName;
};

} // namespace orbelantine::test
