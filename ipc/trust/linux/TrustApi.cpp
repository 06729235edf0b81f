#include "ipc/trust/TrustApi.h"

#include "core/common/log/Log.h"
#include "ipc/trust/SignerSteps.h"
#include "ipc/trust/linux/SignedFile.h"
#include "ipc/trust/linux/TrustAnchors.h"

#include <boost/nowide/convert.hpp>

#include <optional>
#include <utility>

namespace orbelantine {

namespace {

/// A check begins with signer 0; what was opened for it stays open for the rest of the check.
class LinuxTrustApi final : public TrustApi {
  public:
    bool initialize() override { return true; }

    void uninitialize() override { mFile.reset(); }

    bool readSigner(const std::wstring& path, std::uint32_t index,
                    FileEvidence& evidence) override {
        if (index == 0 || path != mPath)
            open(path);
        auto names = mFile ? mFile->signature().signer(index) : std::nullopt;
        if (!names) {
            if (mFile)
                ORB_LOG_TEXT(kLogDebug, "%s() no signer %u.", signer_step::kCheckCertificate,
                             index);
            return false;
        }
        evidence.subjectName = std::move(names->subject);
        evidence.issuerName = std::move(names->issuer);
        logSignerNames(evidence);
        return true;
    }

    std::uint32_t verifyTrust(const std::wstring& path) override {
        if (path != mPath)
            open(path);
        if (!mFile)
            return trust::kNoSignature;
        const CertificateStore anchors = readAnchors(AnchorFolder::inUse());
        return anchors ? mFile->verify(*anchors) : trust::kUntrustedRoot;
    }

  private:
    void open(const std::wstring& path) {
        mPath = path;
        mFile = SignedFile::open(boost::nowide::narrow(path));
    }

    std::wstring mPath;
    std::optional<SignedFile> mFile;
};

} // namespace

std::unique_ptr<TrustApi> TrustApi::system() {
    return std::make_unique<LinuxTrustApi>();
}

} // namespace orbelantine
