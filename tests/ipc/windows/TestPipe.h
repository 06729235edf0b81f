#pragma once

#include "ipc/pipe/PipeApi.h"

#include <windows.h>

#include <atomic>
#include <string>

namespace orbelantine::test {

/// A duplex pipe of messages with overlapped operations, one instance, for this machine alone.
inline constexpr PipeApi::NamedPipe kTestPipe{0x40000003, 14, 1, 1024, 1024, 200};
inline constexpr std::uint32_t kTestPipeAccess = 0xC0000000;
inline constexpr std::uint32_t kTestPipeFlags = 0x40000000;

/// A name that nobody has.
inline std::string testPipeName() {
    static std::atomic<int> count = 0;
    return R"(\\.\pipe\LOCAL\orbelantine-)" + std::to_string(GetCurrentProcessId()) + '-' +
           std::to_string(++count);
}

} // namespace orbelantine::test
