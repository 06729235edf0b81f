#pragma once

#include <openssl/x509.h>

#include <optional>
#include <string>

namespace orbelantine {

/// What people call the one named: the common name, else the unit, the organisation or the mail
/// address. Nothing where there is none of these, or it holds control characters.
[[nodiscard]] std::optional<std::wstring> simpleName(const X509_NAME* name);

} // namespace orbelantine
