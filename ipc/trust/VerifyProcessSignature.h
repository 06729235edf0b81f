#pragma once

#include "ipc/trust/FileEvidence.h"
#include "ipc/trust/TrustApi.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orbelantine {

/// Whether an executable is signed in a given name, and trusted by the system. One object serves
/// one check, on one thread.
class VerifyProcessSignature {
  public:
    explicit VerifyProcessSignature(std::unique_ptr<TrustApi> api = TrustApi::system());
    virtual ~VerifyProcessSignature();
    VerifyProcessSignature(const VerifyProcessSignature&) = delete;
    VerifyProcessSignature& operator=(const VerifyProcessSignature&) = delete;

    /// True where one of `signerNames`, parted by `delimiter` (empty: one name) and each a regular
    /// expression without regard to case, is found in the subject of one of the file's signatures,
    /// and the system trusts the file. False for anything else, the reason being in the log.
    [[nodiscard]] virtual bool verify(const std::wstring& filePath, const std::wstring& signerNames,
                                      const std::wstring& delimiter);
    /// What the last verify found; false, and `out` as it was, before the first.
    [[nodiscard]] bool getFileEvidence(FileEvidence& out) const;

    /// The parts of `text` that are not empty, but for the last; all of it without a delimiter.
    static void Split(const std::wstring& text, const std::wstring& delimiter,
                      std::vector<std::wstring>& parts);

  private:
    [[nodiscard]] bool initializeWinTrustDll();
    void uninitializeWinTrustDll();
    [[nodiscard]] bool checkCertificate(const std::wstring& path, std::uint32_t index);
    [[nodiscard]] bool verifyCertificate(const std::wstring& path);

    const std::unique_ptr<TrustApi> mApi;
    // Whether the API's initialize has succeeded.
    bool mReady = false;
    std::unique_ptr<FileEvidence> mEvidence;
};

} // namespace orbelantine
