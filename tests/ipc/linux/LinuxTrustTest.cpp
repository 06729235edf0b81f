#include "ipc/trust/VerifyProcessSignature.h"
#include "tests/support/CapturedLog.h"

#include <boost/nowide/convert.hpp>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace orbelantine {
namespace {

namespace fs = std::filesystem;
using test::Texts;

constexpr std::uint32_t kTrusted = 0;

/// Files that were signed when the suite was built, in a folder of this user's own.
class LinuxTrust : public testing::Test {
  protected:
    LinuxTrust() {
        std::string folder = "/tmp/orbelantine-trust-XXXXXX";
        EXPECT_NE(::mkdtemp(folder.data()), nullptr);
        mFolder = folder;
        mAnchors = mFolder / "above/anchors";
        fs::create_directories(mAnchors);
        fs::copy(fs::path(ORBELANTINE_SIGNED) / "anchors", mAnchors);
        for (const fs::path& path : {mAnchors.parent_path(), mAnchors})
            ::chmod(path.c_str(), 0755);
        ::chmod((mAnchors / "authority.pem").c_str(), 0644);
        ::setenv("ORBELANTINE_TRUST_DIR", mAnchors.c_str(), 1);
    }

    ~LinuxTrust() override {
        ::unsetenv("ORBELANTINE_TRUST_DIR");
        fs::remove_all(mFolder);
    }

    static fs::path signedFile(const std::string& name) {
        return fs::path(ORBELANTINE_SIGNED) / name;
    }

    /// A copy with its signature, in a folder that can be changed.
    fs::path copied(const std::string& name) {
        const fs::path copy = mFolder / name;
        fs::copy_file(signedFile(name), copy);
        fs::copy_file(signedFile(name + ".p7s"), copy.string() + ".p7s");
        return copy;
    }

    static bool verify(const fs::path& path, const std::wstring& name, FileEvidence& found) {
        VerifyProcessSignature check;
        const bool trusted = check.verify(boost::nowide::widen(path.string()), name, L"");
        EXPECT_TRUE(check.getFileEvidence(found));
        EXPECT_EQ(found.signatureVerified, trusted);
        return trusted;
    }

    /// What trust says of a file that anybody signed.
    static std::uint32_t trustOf(const fs::path& path) {
        FileEvidence found;
        const bool trusted = verify(path, L".", found);
        EXPECT_EQ(trusted, found.trustResult == kTrusted);
        return found.trustResult;
    }

    fs::path mFolder;
    fs::path mAnchors;
};

TEST_F(LinuxTrust, IsWhatTheCertificateAndTheSignatureAreWorth) {
    const struct {
        const char* name;
        std::uint32_t result;
    } cases[] = {
        {"maker", kTrusted},
        {"pem", kTrusted},
        {"other", kTrusted},
        {"both", kTrusted},
        {"stranger", trust::kUntrustedRoot},
        {"withStranger", trust::kUntrustedRoot},
        {"expired", trust::kExpired},
        {"early", trust::kExpired},
        {"server", trust::kWrongUsage},
        {"encipherment", trust::kWrongUsage},
        {"tampered", trust::kBadDigest},
        {"weakDigest", trust::kBadDigest},
        {"noAttributes", trust::kBadDigest},
        {"forged", trust::kBadDigest},
    };

    for (const auto& expected : cases)
        EXPECT_EQ(trustOf(signedFile(expected.name)), expected.result) << expected.name;
}

TEST_F(LinuxTrust, FileWithoutASignatureOfItsOwnHasNoSigner) {
    for (const char* name : {"unsigned", "linked", "noSignature", "notDetached", "missing", ""}) {
        FileEvidence found;
        EXPECT_FALSE(verify(signedFile(name), L".", found)) << name;
        EXPECT_EQ(found.trustResult, trust::kNoSignature) << name;
        EXPECT_FALSE(found.hasCertificate) << name;
    }
}

TEST_F(LinuxTrust, NamesAreThoseOfEachSigner) {
    FileEvidence found;
    EXPECT_TRUE(verify(signedFile("both"), L"^quiet harbour devices$", found));
    EXPECT_EQ(found.issuerName, L"Quiet Harbour Root");
    EXPECT_TRUE(verify(signedFile("both"), L"lantern", found));
    EXPECT_EQ(found.subjectName, L"Second Lantern") << "the organisation, for want of a name";
    EXPECT_FALSE(verify(signedFile("maker"), L"lantern", found));
    EXPECT_FALSE(verify(signedFile("forged"), L"quiet harbour", found));
}

TEST_F(LinuxTrust, SignatureThatIsSwappedAfterItsNameWasReadDoesNotCount) {
    const fs::path file = copied("forged");
    const std::wstring path = boost::nowide::widen(file.string());
    const auto api = TrustApi::system();
    FileEvidence found;
    fs::copy_file(signedFile("stranger.p7s"), file.string() + ".p7s",
                  fs::copy_options::overwrite_existing);
    ASSERT_TRUE(api->initialize() && api->readSigner(path, 0, found));
    fs::copy_file(signedFile("maker"), file, fs::copy_options::overwrite_existing);
    fs::copy_file(signedFile("maker.p7s"), file.string() + ".p7s",
                  fs::copy_options::overwrite_existing);
    EXPECT_EQ(api->verifyTrust(path), trust::kBadDigest);
    EXPECT_TRUE(api->readSigner(path, 0, found));
    EXPECT_EQ(api->verifyTrust(path), kTrusted) << "a new check looks anew";
}

TEST_F(LinuxTrust, OpenFileIsReadWhereItIsAndNamedByWhatTheSystemSays) {
    const fs::path file = copied("maker");
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    const std::string open = "/proc/self/fd/" + std::to_string(descriptor);
    EXPECT_EQ(trustOf(open), kTrusted);
    EXPECT_EQ(::lseek(descriptor, 0, SEEK_CUR), 0) << "the owner's place in the file is moved";

    const fs::path moved = mFolder / "moved";
    fs::rename(file, moved);
    EXPECT_EQ(trustOf(open), trust::kNoSignature);
    fs::rename(file.string() + ".p7s", moved.string() + ".p7s");
    EXPECT_EQ(trustOf(open), kTrusted);

    fs::remove(moved);
    EXPECT_EQ(trustOf(open), trust::kNoSignature);
    // The name that the system now gives may be another's.
    fs::copy_file(signedFile("maker"), moved.string() + " (deleted)");
    fs::copy_file(signedFile("maker.p7s"), moved.string() + " (deleted).p7s");
    EXPECT_EQ(trustOf(open), trust::kNoSignature);
    ::close(descriptor);
}

TEST_F(LinuxTrust, AnchorsThatOthersCouldHavePutThereAreRefused) {
    const fs::path maker = signedFile("maker");
    const auto expectRefused = [&](const char* reason) {
        test::CapturedLog log(kLogWarning);
        EXPECT_EQ(trustOf(maker), trust::kUntrustedRoot) << reason;
        EXPECT_EQ(log.missing({"warning orbelantine::logRefusal() Trusting nothing in ", reason}),
                  Texts{});
    };
    for (const fs::path& path : {mAnchors, mAnchors / "authority.pem", mAnchors.parent_path()}) {
        for (const mode_t others : {0020, 0002}) {
            ::chmod(path.c_str(), 0755 | others);
            expectRefused("others may write to it");
        }
        ::chmod(path.c_str(), 0755);
        EXPECT_EQ(trustOf(maker), kTrusted);
        if (::geteuid() == 0) {
            EXPECT_EQ(::chown(path.c_str(), 65534, 0), 0);
            expectRefused("it belongs to somebody else");
            EXPECT_EQ(::chown(path.c_str(), 0, 0), 0);
        }
    }
    ::chmod(mAnchors.c_str(), 01777);
    expectRefused("others may write to it");
    ::chmod(mAnchors.c_str(), 0755);
    ::chmod(mAnchors.parent_path().c_str(), 01777);
    EXPECT_EQ(trustOf(maker), kTrusted) << "a sticky folder above does no harm";

    const fs::path link = mFolder / "link";
    fs::create_symlink(mAnchors, link);
    for (const std::string& path : {link.string(), link.string() + '/'}) {
        ::setenv("ORBELANTINE_TRUST_DIR", path.c_str(), 1);
        expectRefused("it is a link");
    }
    ::setenv("ORBELANTINE_TRUST_DIR", (mFolder / "missing").c_str(), 1);
    expectRefused("No such file or directory");
}

TEST_F(LinuxTrust, AnchorFileThatIsALinkIsLeftOut) {
    fs::rename(mAnchors / "authority.pem", mFolder / "authority.pem");
    fs::create_symlink(mFolder / "authority.pem", mAnchors / "authority.pem");
    EXPECT_EQ(trustOf(signedFile("maker")), trust::kUntrustedRoot);
    EXPECT_EQ(trustOf(signedFile("stranger")), trust::kUntrustedRoot);
}

} // namespace
} // namespace orbelantine
