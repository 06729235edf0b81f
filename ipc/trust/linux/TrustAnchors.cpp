#include "ipc/trust/linux/TrustAnchors.h"

#include "core/common/log/Log.h"
#include "core/common/types/linux/FileDescriptor.h"
#include "ipc/trust/linux/BoundedFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

namespace orbelantine {

namespace {

constexpr const char* kAnchorPath = "/etc/orbelantine/trust";
constexpr std::size_t kLargestAnchorFile = std::size_t{1} << 20;

using Folder = std::unique_ptr<DIR, decltype([](DIR* folder) { ::closedir(folder); })>;

void logRefusal(const std::string& path, const char* reason) {
    ORB_LOG(kLogWarning, "%s() Trusting nothing in %s: %s", path.c_str(), reason);
}

/// Why somebody else could have changed what `status` is of; null if nobody could.
const char* weaknessOf(const struct stat& status, const std::vector<uid_t>& owners) {
    if (std::ranges::find(owners, status.st_uid) == owners.end())
        return "it belongs to somebody else";
    return (status.st_mode & (S_IWGRP | S_IWOTH)) != 0 ? "others may write to it" : nullptr;
}

/// The same of a folder above; in a sticky one nobody moves what is another's.
const char* weaknessAbove(struct stat status, const std::vector<uid_t>& owners) {
    if ((status.st_mode & S_ISVTX) != 0)
        status.st_mode &= ~mode_t{S_IWGRP | S_IWOTH};
    return weaknessOf(status, owners);
}

bool areSafeAbove(const std::filesystem::path& real, const std::vector<uid_t>& owners) {
    for (std::filesystem::path above = real; above != above.parent_path();) {
        above = above.parent_path();

        struct stat status {};

        const char* weakness = ::lstat(above.c_str(), &status) != 0 ? std::strerror(errno)
                                                                    : weaknessAbove(status, owners);
        if (weakness != nullptr) {
            logRefusal(above, weakness);
            return false;
        }
    }
    return true;
}

/// The folder, once it is known that all of its path is safe.
FileDescriptor openSafely(const AnchorFolder& folder) {
    std::filesystem::path named = std::filesystem::path(folder.path).lexically_normal();
    // A slash at the end would hide that it is a link.
    if (!named.has_filename())
        named = named.parent_path();
    std::error_code failed;
    if (std::filesystem::is_symlink(std::filesystem::symlink_status(named, failed))) {
        logRefusal(folder.path, "it is a link");
        return {};
    }
    const std::filesystem::path real = std::filesystem::canonical(named, failed);
    if (failed) {
        logRefusal(folder.path, failed.message().c_str());
        return {};
    }
    if (!areSafeAbove(real, folder.owners))
        return {};
    FileDescriptor opened(::open(real.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));

    struct stat status {};

    const char* weakness = !opened || ::fstat(opened.get(), &status) != 0
                               ? std::strerror(errno)
                               : weaknessOf(status, folder.owners);
    if (weakness != nullptr) {
        logRefusal(real, weakness);
        return {};
    }
    return opened;
}

void addCertificates(const std::vector<std::uint8_t>& pem, X509_STORE& store) {
    const BioOwner bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    while (
        const CertificateOwner anchor{PEM_read_bio_X509(bio.get(), nullptr, noPassword, nullptr)})
        X509_STORE_add_cert(&store, anchor.get());
}

void addFile(int folder, const AnchorFolder& anchors, const char* name, X509_STORE& store) {
    const std::string path = anchors.path + '/' + name;
    const auto file = BoundedFile::openUnlinked(folder, name, kLargestAnchorFile);
    if (!file)
        return logRefusal(path, "it is no file of a sensible size");
    if (const char* weakness = weaknessOf(file->status(), anchors.owners))
        return logRefusal(path, weakness);
    if (const auto pem = file->read())
        addCertificates(*pem, store);
}

} // namespace

AnchorFolder AnchorFolder::inUse() {
    if (const char* path = ::secure_getenv("ORBELANTINE_TRUST_DIR"))
        return {path, {0, ::geteuid()}};
    return {kAnchorPath, {0}};
}

CertificateStore readAnchors(const AnchorFolder& folder) {
    const OpenSslErrors errors;
    CertificateStore store(X509_STORE_new());
    const FileDescriptor opened = openSafely(folder);
    if (!store || !opened)
        return store;
    const Folder list(::fdopendir(::fcntl(opened.get(), F_DUPFD_CLOEXEC, 0)));
    while (const dirent* entry = list ? ::readdir(list.get()) : nullptr)
        if (std::string_view(entry->d_name).ends_with(".pem"))
            addFile(opened.get(), folder, entry->d_name, *store);
    return store;
}

} // namespace orbelantine
