#pragma once

#include <memory>

namespace spdlog::sinks {
class sink;
}

namespace orbelantine {

/// Writes to the debugger's output; null where the system has none.
[[nodiscard]] std::shared_ptr<spdlog::sinks::sink> debuggerSink();

} // namespace orbelantine
