#pragma once

// spdlog as this product uses it, for source files alone: all of it and of Debian's fmt in headers,
// wide file names where the system has them, and no console logger under the empty name.
#define SPDLOG_HEADER_ONLY
#define FMT_HEADER_ONLY
#define SPDLOG_WCHAR_FILENAMES
#define SPDLOG_DISABLE_DEFAULT_LOGGER
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>
