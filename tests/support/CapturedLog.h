#pragma once

#include "core/common/log/Log.h"

#include <memory>
#include <string>
#include <vector>

namespace orbelantine::test {

/// What native code logs at `level` and above, as long as this object lives.
class CapturedLog {
  public:
    /// `prefix`: what told() leaves out where a text begins with it.
    explicit CapturedLog(unsigned level, std::string prefix = "");
    ~CapturedLog();
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// The lines since the last call, each after its level's name.
    [[nodiscard]] std::vector<std::string> told();
    /// Those of `parts` that none of the lines since the last call has in it.
    [[nodiscard]] std::vector<std::string> missing(std::vector<std::string> parts);

  private:
    struct Sink;

    std::shared_ptr<Sink> mSink;
};

using Texts = std::vector<std::string>;

} // namespace orbelantine::test
