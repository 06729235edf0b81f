#pragma once

#include <string>

namespace orbelantine {

/// The operating system's text for one of its error numbers as it stands, trailing line end
/// included; empty for a number it doesn't know.
[[nodiscard]] std::string systemErrorText(int code);

} // namespace orbelantine
