#pragma once

#include "core/common/OSAL.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/SystemText.h"

#include <iostream>
#include <string>

/// Only a peer whose executable `signer` has signed is taken.
inline orbelantine::KVStore onlySignedBy(const std::string& signer) {
    orbelantine::KVStore settings;
    settings.setBoolAt("verify_trusted_signature", true);
    settings.setStringAt("signer_name", signer);
    return settings;
}

/// What an error of the system's says, without the line end that Windows' texts have.
inline std::string reason(const orbelantine::error_code& ec) {
    std::string text = orbelantine::systemErrorText(ec.value());
    text.erase(text.find_last_not_of("\r\n ") + 1);
    return text;
}

/// Says why, and with which status to end: 3 for a peer that was refused, else 1.
inline int failed(const std::string& what, const orbelantine::error_code& ec) {
    using orbelantine::IpcErrors;
    const bool refused = ec == IpcErrors::getErrorCode(IpcErrors::SecurityValidationFailure);
    std::cout << what << ": " << (refused ? "the peer is not signed as it should be" : reason(ec))
              << " (" << ec.value() << ")\n";
    return refused ? 3 : 1;
}
