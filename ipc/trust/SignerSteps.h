#pragma once

#include "ipc/trust/FileEvidence.h"

namespace orbelantine {

/// The steps by which a signer is read, under the names that the log knows them by.
namespace signer_step {
inline constexpr const char* kCheckCertificate =
    "orbelantine::VerifyProcessSignature::checkCertificate";
inline constexpr const char* kGetProgAndPublisherInfo =
    "orbelantine::VerifyProcessSignature::getProgAndPublisherInfo";
inline constexpr const char* kGetCertificateInfo =
    "orbelantine::VerifyProcessSignature::getCertificateInfo";
inline constexpr const char* kGetTimeStampSignerInfo =
    "orbelantine::VerifyProcessSignature::getTimeStampSignerInfo";
inline constexpr const char* kGetDateOfTimeStamp =
    "orbelantine::VerifyProcessSignature::getDateOfTimeStamp";
} // namespace signer_step

/// Logs the names of a signer's certificate.
void logSignerNames(const FileEvidence& evidence);

} // namespace orbelantine
