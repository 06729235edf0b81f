#pragma once

#include "ipc/pipe/linux/PipeEnd.h"

#include <cstdint>
#include <memory>
#include <string>

namespace orbelantine {

/// As PipeApi::waitNamedPipe. 0 also where something else than the server is missing: joinPipe
/// tells what, while whoever waits would begin anew at once.
[[nodiscard]] std::uint32_t waitForPipe(const std::string& name, std::uint32_t timeout);

/// As PipeApi::createFile, which is over when the server has taken this client: 231 where it took
/// another, 121 where it took none for 2 seconds, 5 where it is not the effective user's.
[[nodiscard]] std::uint32_t joinPipe(const std::string& name, std::shared_ptr<PipeEnd>& pipe);

} // namespace orbelantine
