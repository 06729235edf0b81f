#pragma once

#include <openssl/x509.h>

#include <cstdint>

namespace orbelantine {

/// 0 where `certificate` is good now for signing code, through `others` where needed, by one of
/// `anchors`; else a number of `trust`. Nothing is asked of the network.
[[nodiscard]] std::uint32_t codeSigningTrust(X509& certificate, STACK_OF(X509) * others,
                                             X509_STORE& anchors);

} // namespace orbelantine
