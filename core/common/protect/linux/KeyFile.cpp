#include "core/common/protect/linux/KeyFile.h"

#include "core/common/errors/linux/LinuxErrors.h"
#include "core/common/types/linux/FileDescriptor.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <utility>

namespace orbelantine {

namespace {

constexpr ProtectionApi::Error kFileNotFound = 2;
constexpr ProtectionApi::Error kAccessDenied = 5;
constexpr ProtectionApi::Error kErrorNoKey = 13;
constexpr mode_t kPermissions = 07777;

ProtectionApi::Error lastError() {
    return windowsError(errno);
}

/// Those that are missing are the owner's alone.
void makeFolders(const std::filesystem::path& folder) {
    if (folder.empty() || folder == folder.parent_path() || mkdir(folder.c_str(), S_IRWXU) == 0 ||
        errno != ENOENT)
        return;
    makeFolders(folder.parent_path());
    (void)mkdir(folder.c_str(), S_IRWXU);
}

bool writeKey(int file, const KeyFile::Key& key, mode_t mode) {
    return write(file, key.data(), key.size()) == static_cast<ssize_t>(key.size()) &&
           fchmod(file, mode) == 0 && fsync(file) == 0;
}

} // namespace

KeyFile::KeyFile(std::string folder, mode_t mode, uid_t owner)
    : mFolder(std::move(folder))
    , mPath(mFolder + "/protection.key")
    , mMode(mode)
    , mOwner(owner) {}

ProtectionApi::Error KeyFile::read(Key& key) const {
    const FileDescriptor file(open(mPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));

    struct stat status {};

    if (!file || fstat(file.get(), &status) != 0)
        return lastError();
    const bool wider = (status.st_mode & kPermissions & ~mMode) != 0;
    if (!S_ISREG(status.st_mode) || status.st_uid != mOwner || wider)
        return kAccessDenied;
    const bool whole = status.st_size == static_cast<off_t>(key.size()) &&
                       ::read(file.get(), key.data(), key.size()) == status.st_size;
    return whole ? 0 : kErrorNoKey;
}

ProtectionApi::Error KeyFile::readOrMake(Key& key) const {
    const ProtectionApi::Error error = read(key);
    if (error != kFileNotFound && error != windowsError(ENOENT))
        return error;
    const ProtectionApi::Error unmade = make();
    return unmade != 0 ? unmade : read(key);
}

ProtectionApi::Error KeyFile::make() const {
    // A folder that others look into is for its owner to make.
    if ((mMode & (S_IRGRP | S_IROTH)) == 0)
        makeFolders(mFolder);
    Key key{};
    if (getrandom(key.data(), key.size(), 0) != static_cast<ssize_t>(key.size()))
        return lastError();
    std::string draft = mPath + ".XXXXXX";
    const FileDescriptor file(mkostemp(draft.data(), O_CLOEXEC));
    if (!file)
        return lastError();
    ProtectionApi::Error error = writeKey(file.get(), key, mMode) ? 0 : lastError();
    // One that is there by now is left, and used.
    if (error == 0 && link(draft.c_str(), mPath.c_str()) != 0 && errno != EEXIST)
        error = lastError();
    (void)unlink(draft.c_str());
    return error;
}

} // namespace orbelantine
