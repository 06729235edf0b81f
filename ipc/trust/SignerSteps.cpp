#include "ipc/trust/SignerSteps.h"

#include "core/common/log/Log.h"

namespace orbelantine {

void logSignerNames(const FileEvidence& evidence) {
    ORB_LOG_TEXT(kLogDebug, "%s() Issuer Name: %ls\nSubject (signer) Name: %ls.",
                 signer_step::kCheckCertificate, evidence.issuerName.c_str(),
                 evidence.subjectName.c_str());
}

} // namespace orbelantine
