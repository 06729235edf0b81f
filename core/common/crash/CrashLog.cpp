#include "core/common/crash/CrashLog.h"

#include "core/common/crash/CrashText.h"

#include <cstdarg>

namespace orbelantine {

CrashLog::Scope::Scope(CrashLog& log)
    : mLog(log) {
    ++mLog.mScopes;
}

CrashLog::Scope::~Scope() {
    if (--mLog.mScopes == 0)
        mLog.write();
}

void CrashLog::add(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    mLines.push_back(crashText(format, arguments));
    va_end(arguments);
}

void CrashLog::write() {
    std::vector<std::string> lines;
    lines.swap(mLines);
    for (const std::string& line : lines)
        ORB_LOG_TEXT(kLogError, "%s", line.c_str());
}

} // namespace orbelantine
