#pragma once

#include "core/common/log/Log.h"

#include <string>
#include <vector>

namespace orbelantine {

/// The log lines of a crash, at error level. They wait until all is in the file: the thread that
/// crashed may hold the log's lock, and then nothing after the first line would be done.
class CrashLog {
  public:
    /// While there is one, lines wait; the outermost one's end writes them.
    class Scope {
      public:
        explicit Scope(CrashLog& log);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

      private:
        CrashLog& mLog;
    };

    void add(const char* format, ...) ORB_PRINTF(2, 3);

  private:
    void write();

    int mScopes = 0;
    std::vector<std::string> mLines;
};

} // namespace orbelantine
