#pragma once

#include "core/common/types/linux/FileDescriptor.h"

#include <cstdint>

namespace orbelantine {

/// Opens the folder of this user's pipes, which is made where it is missing:
/// $ORBELANTINE_PIPE_DIR, else $XDG_RUNTIME_DIR/orbelantine/pipes, else
/// /tmp/orbelantine-<uid>/pipes. 5, and the reason in the log, unless it is a real folder of the
/// effective user's that nobody else may enter. What is done with pipes is done relative to the
/// descriptor, so that nobody can change the folder in between.
[[nodiscard]] std::uint32_t openPipeFolder(FileDescriptor& folder);

} // namespace orbelantine
