#pragma once

namespace orbelantine {

/// What stands before every name: the pipes of this computer and this logon session.
inline constexpr const char* kPipeNamePrefix = R"(\\.\pipe\LOCAL\)";

} // namespace orbelantine
