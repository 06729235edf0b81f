#pragma once

#include <string>

namespace orbelantine::binding {

/// Wide text of the host, UTF-16 and null-terminated, as this platform's std::wstring. Null is the
/// empty text. A lone surrogate is kept as it stands, so that text survives both crossings.
[[nodiscard]] std::wstring fromUtf16(const char16_t* text);

/// The reverse; a value that is no code point becomes U+FFFD.
[[nodiscard]] std::u16string toUtf16(const std::wstring& text);

} // namespace orbelantine::binding
