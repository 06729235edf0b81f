#include "core/common/log/DebuggerSink.h"

namespace orbelantine {

std::shared_ptr<spdlog::sinks::sink> debuggerSink() {
    return nullptr;
}

} // namespace orbelantine
