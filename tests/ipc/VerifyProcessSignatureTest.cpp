#include "ipc/trust/VerifyProcessSignature.h"

#include "ipc/trust/NestedSignature.h"
#include "tests/ipc/FakeTrustApi.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <memory>

namespace orbelantine {
namespace {

using test::Texts;

constexpr const wchar_t* kFile = L"tool.exe";

class SignatureOfProcess : public testing::Test {
  protected:
    bool verify(const std::wstring& names, const std::wstring& delimiter = L"") {
        return mVerify->verify(kFile, names, delimiter);
    }

    FileEvidence evidence() {
        FileEvidence found;
        EXPECT_TRUE(mVerify->getFileEvidence(found));
        return found;
    }

    test::TrustScript mScript;
    std::unique_ptr<VerifyProcessSignature> mVerify =
        std::make_unique<VerifyProcessSignature>(std::make_unique<test::FakeTrustApi>(mScript));
};

TEST_F(SignatureOfProcess, NameComesFirstTrustLastAndTheSystemIsLetGoAtTheEnd) {
    mScript.subjects = {L"Quiet Harbour Devices"};
    test::CapturedLog log(kLogDebug, "orbelantine::VerifyProcessSignature::");
    EXPECT_TRUE(verify(L"harb"));
    EXPECT_TRUE(verify(L"HARBOUR dev"));
    EXPECT_EQ(log.missing({"debug verify() found signer name.",
                           "debug verifyCertificate() The file tool.exe is signed and the "
                           "signature was verified.",
                           "debug Entering function "
                           "orbelantine::VerifyProcessSignature::initializeWinTrustDll"}),
              Texts{});
    const FileEvidence found = evidence();
    EXPECT_EQ(found.filePath, kFile);
    EXPECT_TRUE(found.hasCertificate && found.signatureVerified);
    EXPECT_EQ(found.trustResult, 0u);
    mVerify.reset();
    EXPECT_EQ(mScript.asked,
              (Texts{"initialize", "signer 0", "trust", "signer 0", "trust", "uninitialize"}));
}

TEST_F(SignatureOfProcess, WalkEndsAtTheFirstSignatureThatMatches) {
    mScript.subjects = {L"One", L"Two", L"Three"};
    EXPECT_TRUE(verify(L"four|two"));
    EXPECT_EQ(mScript.asked, (Texts{"initialize", "signer 0", "signer 1", "trust"}));
    EXPECT_EQ(evidence().subjectName, L"Two");
}

TEST_F(SignatureOfProcess, WhatDoesNotMatchIsNeverAskedForTrust) {
    mScript.subjects = {L"One", L"Two"};
    test::CapturedLog log(kLogDebug, "orbelantine::VerifyProcessSignature::");
    for (const wchar_t* names : {L"", L"Three", L"^ne", L"["}) {
        mScript.asked.clear();
        EXPECT_FALSE(verify(names));
        EXPECT_FALSE(evidence().hasCertificate);
        EXPECT_EQ(evidence().trustResult, trust::kNoSignature);
        std::erase(mScript.asked, "initialize");
        EXPECT_EQ(mScript.asked, (Texts{"signer 0", "signer 1", "signer 2"}));
    }
    EXPECT_EQ(
        log.missing({"debug verify() regext error: ",
                     "debug verify() File tool.exe doesn't have or has invalid certificate."}),
        Texts{});
}

TEST_F(SignatureOfProcess, FaultyExpressionLeavesTheNextItsTurn) {
    mScript.subjects = {L"One"};
    EXPECT_TRUE(verify(L"[;;one", L";"));
    EXPECT_FALSE(verify(L"[;;one"));
}

TEST_F(SignatureOfProcess, NameThatWouldExhaustTheStackIsNoMatch) {
    mScript.subjects = {std::wstring(1'000'000, L'a')};
    EXPECT_FALSE(verify(L"(a|b)*"));
    mScript.subjects = {std::wstring(256, L'a')};
    EXPECT_TRUE(verify(L"^(a|b)*$"));
}

TEST_F(SignatureOfProcess, UntrustedFileIsRefusedWithTheReason) {
    const struct {
        std::uint32_t result;
        bool hasCertificate;
        const char* line;
    } cases[] = {
        {trust::kNoSignature, false,
         "debug verifyCertificate() The file tool.exe is not signed. (TRUST_E_NOSIGNATURE)"},
        {trust::kSubjectFormUnknown, false,
         "debug verifyCertificate() The file tool.exe is not signed. "
         "(TRUST_E_SUBJECT_FORM_UNKNOWN)"},
        {trust::kUntrustedRoot, true,
         "error verifyCertificate() An error (0x800b0109) occurred trying to verify the signature "
         "of the file tool.exe."},
        {1, true, "error verifyCertificate() An error (0x1) occurred"},
    };

    mScript.subjects = {L"One"};
    for (const auto& expected : cases) {
        mScript.trustResult = expected.result;
        test::CapturedLog log(kLogDebug, "orbelantine::VerifyProcessSignature::");
        EXPECT_FALSE(verify(L"one"));
        EXPECT_EQ(log.missing({expected.line}), Texts{});
        EXPECT_EQ(evidence().hasCertificate, expected.hasCertificate);
        EXPECT_EQ(evidence().trustResult, expected.result);
        EXPECT_FALSE(evidence().signatureVerified);
    }
}

TEST_F(SignatureOfProcess, MachineThatCannotCheckTrustsNothing) {
    mScript.subjects = {L"One"};
    mScript.present = false;
    EXPECT_FALSE(verify(L"one"));
    FileEvidence untouched;
    untouched.filePath = L"mine";
    EXPECT_FALSE(mVerify->getFileEvidence(untouched));
    EXPECT_EQ(untouched.filePath, L"mine");
    mScript.present = true;
    EXPECT_TRUE(verify(L"one"));
    mScript.subjects.clear();
    EXPECT_FALSE(verify(L"one"));
    EXPECT_EQ(evidence().subjectName, L"");
}

TEST(SignerNames, PartsThatAreEmptyAreLeftOutAndTheRestIsOne) {
    const struct {
        const wchar_t* text;
        const wchar_t* delimiter;
        std::vector<std::wstring> parts;
    } cases[] = {
        {L"a;b", L"", {L"a;b"}},
        {L"", L"", {L""}},
        {L"a", L";", {L"a"}},
        {L";a;;b;", L";", {L"a", L"b"}},
        {L";;", L";", {}},
        {L"", L";", {L""}},
        {L"a, b,c", L", ", {L"a", L"b,c"}},
        {L"aaa", L"aa", {L"a"}},
    };

    for (const auto& expected : cases) {
        std::vector<std::wstring> parts = {L"old"};
        VerifyProcessSignature::Split(expected.text, expected.delimiter, parts);
        EXPECT_EQ(parts, expected.parts);
    }
}

TEST(NestedSignatures, OneNumberCountsAttributesAndTheirValues) {
    const SignerAttribute attributes[] = {
        {"1.2.840.113549.1.9.6", 9}, {kNestedSignature, 3}, {kNestedSignature, 2},
        {kNestedSignature, 2},       {kNestedSignature, 9},
    };
    const auto place = [&](std::uint32_t index) {
        const auto found = findNestedSignature(attributes, index);
        return found ? static_cast<int>(found->attribute * 10 + found->value) : -1;
    };
    EXPECT_EQ(place(1), 10);
    EXPECT_EQ(place(2), 21);
    EXPECT_EQ(place(3), -1) << "the third attribute lacks a third value";
    EXPECT_EQ(place(4), 43);
    EXPECT_EQ(place(5), -1);
}

} // namespace
} // namespace orbelantine
