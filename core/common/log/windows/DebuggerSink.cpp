#include "core/common/log/DebuggerSink.h"

#include "core/common/log/Spdlog.h"

#include <spdlog/sinks/msvc_sink.h>

namespace orbelantine {

std::shared_ptr<spdlog::sinks::sink> debuggerSink() {
    return std::make_shared<spdlog::sinks::msvc_sink_mt>();
}

} // namespace orbelantine
