#pragma once

#include "ipc/trust/FileEvidence.h"
#include "ipc/trust/windows/CryptOwners.h"

namespace orbelantine {

/// The program's name and links, as the signer gives them; what is missing or unreadable stays.
void getProgAndPublisherInfo(const CMSG_SIGNER_INFO& signer, FileEvidence& evidence);

/// Issuer and subject; false where one of them can't be had, with the first in place.
[[nodiscard]] bool getCertificateInfo(const CERT_CONTEXT& certificate, FileEvidence& evidence);

/// Who confirmed the time; null where nobody did.
[[nodiscard]] LocalOwner<CMSG_SIGNER_INFO> getTimeStampSignerInfo(const CMSG_SIGNER_INFO& signer);

/// The local time that the counter-signer confirmed; false where it names none.
[[nodiscard]] bool getDateOfTimeStamp(const CMSG_SIGNER_INFO& counterSigner,
                                      FileEvidence& evidence);

} // namespace orbelantine
