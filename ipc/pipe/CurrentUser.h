#pragma once

#include "ipc/pipe/UserApi.h"

#include <string>

namespace orbelantine {

/// The SID of the user of this process as text. Empty, with the reason in the log and its number in
/// `error`, where the system doesn't tell.
[[nodiscard]] std::wstring getCurrentUserSid(UserApi& api, UserApi::Error& error);

} // namespace orbelantine
