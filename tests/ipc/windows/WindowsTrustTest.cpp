#include "ipc/trust/VerifyProcessSignature.h"
#include "ipc/trust/windows/SignerDetails.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

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

/// An attribute with one value.
struct Attribute {
    std::string identifier;
    std::vector<std::uint8_t> bytes;
    CRYPT_ATTR_BLOB value{static_cast<DWORD>(bytes.size()), bytes.data()};
    CRYPT_ATTRIBUTE attribute{identifier.data(), 1, &value};
    CRYPT_ATTRIBUTES list{1, &attribute};
};

std::vector<std::uint8_t> encoded(const CMSG_SIGNER_INFO& signer) {
    DWORD size = 0;
    EXPECT_TRUE(CryptEncodeObject(kCertEncoding, PKCS7_SIGNER_INFO, &signer, nullptr, &size));
    std::vector<std::uint8_t> bytes(size);
    EXPECT_TRUE(CryptEncodeObject(kCertEncoding, PKCS7_SIGNER_INFO, &signer, bytes.data(), &size));
    bytes.resize(size);
    return bytes;
}

CMSG_SIGNER_INFO signerWithoutAttributes() {
    static std::uint8_t emptyName[] = {0x30, 0};
    static char sha256[] = "2.16.840.1.101.3.4.2.1";
    CMSG_SIGNER_INFO signer{};
    signer.dwVersion = 1;
    signer.Issuer = {sizeof(emptyName), emptyName};
    signer.SerialNumber = {1, emptyName};
    signer.HashAlgorithm.pszObjId = sha256;
    signer.HashEncryptionAlgorithm.pszObjId = sha256;
    return signer;
}

TEST(TimeStamp, IsTheLocalTimeThatTheCounterSignerConfirmed) {
    const std::string utc = "\x17\x0d"
                            "240301123456Z";
    Attribute time{"1.2.840.113549.1.9.5", {utc.begin(), utc.end()}};
    CMSG_SIGNER_INFO counterSigner = signerWithoutAttributes();
    counterSigner.AuthAttrs = time.list;
    Attribute counterSignature{"1.2.840.113549.1.9.6", encoded(counterSigner)};
    CMSG_SIGNER_INFO signer = signerWithoutAttributes();
    EXPECT_EQ(getTimeStampSignerInfo(signer), nullptr);
    signer.UnauthAttrs = counterSignature.list;

    const auto found = getTimeStampSignerInfo(signer);
    ASSERT_NE(found, nullptr);
    FileEvidence evidence;
    EXPECT_TRUE(getDateOfTimeStamp(*found, evidence));
    const SYSTEMTIME universal{2024, 3, 5, 1, 12, 34, 56, 0};
    SYSTEMTIME local{};
    ASSERT_TRUE(SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local));
    EXPECT_EQ(evidence.timeStamp, std::bit_cast<SystemTime>(local));

    counterSignature.value.cbData -= 4;
    test::CapturedLog log(kLogDebug, kSteps);
    EXPECT_EQ(getTimeStampSignerInfo(signer), nullptr);
    EXPECT_EQ(log.missing({"error getTimeStampSignerInfo() CryptDecodeObject: get size of "
                           "CMSG_SIGNER_INFO structure failed with "}),
              Texts{});
    time.value.pbData = counterSignature.bytes.data();
    EXPECT_FALSE(getDateOfTimeStamp(counterSigner, evidence));
    EXPECT_EQ(log.missing({"debug getDateOfTimeStamp() CryptDecodeObject failed with "}), Texts{});
}

} // namespace
} // namespace orbelantine
