#pragma once

#include "core/common/log/Log.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace orbelantine::test {

/// What native code logs at `level` and above, as long as this object lives.
class CapturedLog {
  public:
    struct Line {
        unsigned level;
        std::string text;
        bool operator==(const Line&) const = default;
    };

    explicit CapturedLog(unsigned level);
    ~CapturedLog();
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// The lines since the last call.
    [[nodiscard]] std::vector<Line> take();

  private:
    struct Sink;

    std::shared_ptr<Sink> mSink;
};

void PrintTo(const CapturedLog::Line& line, std::ostream* out);

} // namespace orbelantine::test
