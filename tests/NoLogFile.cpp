#include "core/common/log/Log.h"

namespace {

/// The first line of native code would make the log's file in the user's own folder.
[[maybe_unused]] const bool gNoLogFile = (orbelantine::set_disable_file_log(true), true);

} // namespace
