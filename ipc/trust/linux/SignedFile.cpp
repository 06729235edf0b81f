#include "ipc/trust/linux/SignedFile.h"

#include "core/common/log/Log.h"
#include "ipc/trust/FileEvidence.h"
#include "ipc/trust/SignerSteps.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <utility>

namespace orbelantine {

namespace {

constexpr const char* kDescriptors = "/proc/self/fd/";

/// The path of the open file; empty where it has none any more.
std::string pathOf(const std::string& descriptor, const struct stat& opened) {
    std::array<char, PATH_MAX> text{};
    const ssize_t size = ::readlink(descriptor.c_str(), text.data(), text.size());
    if (size <= 0 || static_cast<std::size_t>(size) == text.size())
        return {};
    std::string path(text.data(), static_cast<std::size_t>(size));

    // A deleted file's path is one that another file may bear.
    struct stat named {};

    const bool same = ::stat(path.c_str(), &named) == 0 && named.st_dev == opened.st_dev &&
                      named.st_ino == opened.st_ino;
    return same && path.front() == '/' ? path : std::string();
}

std::optional<CmsSignature> readSignature(const std::string& path) {
    const auto file = BoundedFile::openUnlinked(AT_FDCWD, path, SignedFile::kLargestSignature);
    const auto bytes = file ? file->read() : std::nullopt;
    return bytes ? CmsSignature::parse(*bytes) : std::nullopt;
}

void logUnsigned(const std::string& path, const char* reason) {
    ORB_LOG_TEXT(kLogError, "%s() %s: %s", signer_step::kCheckCertificate, path.c_str(), reason);
}

} // namespace

SignedFile::SignedFile(BoundedFile executable, CmsSignature signature)
    : mExecutable(std::move(executable))
    , mSignature(std::move(signature)) {}

std::optional<SignedFile> SignedFile::open(const std::string& path) {
    auto executable = BoundedFile::open(path, CmsSignature::kLargestContent);
    if (!executable) {
        logUnsigned(path, "no file that can be read, or too large a one");
        return std::nullopt;
    }
    const std::string named =
        path.starts_with(kDescriptors) ? pathOf(path, executable->status()) : path;
    auto signature = named.empty() ? std::nullopt : readSignature(named + ".p7s");
    if (!signature) {
        logUnsigned(path, "no signature beside it");
        return std::nullopt;
    }
    return SignedFile(std::move(*executable), std::move(*signature));
}

std::uint32_t SignedFile::verify(X509_STORE& anchors) const {
    BioOwner content(BIO_new_fd(mExecutable.descriptor(), BIO_NOCLOSE));
    if (!content || BIO_seek(content.get(), 0) != 0)
        return trust::kBadDigest;
    return mSignature.verify(std::move(content), anchors);
}

} // namespace orbelantine
