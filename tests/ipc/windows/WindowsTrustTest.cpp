#include "ipc/trust/VerifyProcessSignature.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace orbelantine {
namespace {

using test::Texts;

constexpr const char* kSteps = "orbelantine::VerifyProcessSignature::";

/// Programs that were signed when the suite was built. Wine trusts whoever signed.
class WindowsTrust : public testing::Test {
  protected:
    static std::wstring signedFile(const char* name) {
        return std::filesystem::absolute(std::filesystem::path(ORBELANTINE_SIGNED) / name)
            .wstring();
    }

    bool verify(const char* name, const std::wstring& names) {
        VerifyProcessSignature check;
        const bool trusted = check.verify(signedFile(name), names, L"");
        EXPECT_TRUE(check.getFileEvidence(mFound));
        return trusted;
    }

    FileEvidence mFound;
};

TEST_F(WindowsTrust, SignedProgramTellsWhoMadeItAndWhatItIs) {
    test::CapturedLog log(kLogDebug, kSteps);
    EXPECT_TRUE(verify("maker.exe", L"^quiet harbour devices$"));
    EXPECT_TRUE(mFound.hasCertificate && mFound.signatureVerified);
    EXPECT_EQ(mFound.trustResult, 0u);
    EXPECT_EQ(mFound.subjectName, L"Quiet Harbour Devices");
    EXPECT_EQ(mFound.issuerName, L"Quiet Harbour Root");
    EXPECT_EQ(mFound.moreInfoLink, L"http://harbour.example/about");
    EXPECT_EQ(mFound.publisherLink, L"");
    EXPECT_EQ(mFound.timeStamp, SystemTime{});
    EXPECT_EQ(log.missing({"debug checkCertificate() Signer Certificate:",
                           "debug checkCertificate() Issuer Name: Quiet Harbour Root\nSubject "
                           "(signer) Name: Quiet Harbour Devices.",
                           "debug getProgAndPublisherInfo() Program Name : ",
                           "\nPublisher Link : \nMoreInfo Link : http://harbour.example/about.",
                           "debug verifyCertificate() The file "}),
              Texts{});
}

TEST_F(WindowsTrust, NestedSignatureIsFoundWhereTheFilesOwnDoesNotMatch) {
    EXPECT_TRUE(verify("nested.exe", L"lantern"));
    EXPECT_EQ(mFound.subjectName, L"Second Lantern");
    EXPECT_TRUE(verify("nested.exe", L"harbour dev"));
    EXPECT_EQ(mFound.subjectName, L"Quiet Harbour Devices");
    test::CapturedLog log(kLogDebug, kSteps);
    EXPECT_FALSE(verify("nested.exe", L"nobody"));
    EXPECT_EQ(log.missing({"debug verify() File "}), Texts{});
    EXPECT_FALSE(verify("maker.exe", L"lantern"));
}

TEST_F(WindowsTrust, TamperedProgramIsNotTrustedInItsMakersName) {
    EXPECT_FALSE(verify("tampered.exe", L"harbour"));
    EXPECT_EQ(mFound.trustResult, trust::kBadDigest);
    EXPECT_FALSE(mFound.signatureVerified);
}

TEST_F(WindowsTrust, UnsignedOrMissingProgramIsRefusedBeforeTrustIsAsked) {
    for (const char* name : {"unsigned.exe", "missing.exe"}) {
        test::CapturedLog log(kLogDebug, kSteps);
        EXPECT_FALSE(verify(name, L"."));
        EXPECT_FALSE(mFound.hasCertificate);
        EXPECT_EQ(mFound.trustResult, trust::kNoSignature);
        EXPECT_EQ(log.missing({"error checkCertificate() CryptQueryObject failed with ",
                               "debug Entering function orbelantine::VerifyProcessSignature::"
                               "verifyCertificate"})
                      .size(),
                  1u);
    }
}

} // namespace
} // namespace orbelantine
