#include "ipc/pipe/linux/PipeFolder.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "core/common/log/Log.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine {

namespace {

namespace fs = std::filesystem;

constexpr mode_t kOwnerAlone = 0700;
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

/// A folder that is taken as it is, and those below it that must be ours.
struct PipePlace {
    fs::path base;
    std::vector<std::string> below;

    [[nodiscard]] std::string text() const {
        fs::path whole = base;
        for (const std::string& name : below)
            whole /= name;
        return whole.string();
    }
};

fs::path pathOfVariable(const char* variable) {
    const char* value = std::getenv(variable);
    return value ? fs::path(value).lexically_normal() : fs::path();
}

PipePlace pipePlace() {
    if (fs::path folder = pathOfVariable("ORBELANTINE_PIPE_DIR"); !folder.empty()) {
        if (!folder.has_filename())
            folder = folder.parent_path();
        return {folder.parent_path(), {folder.filename().string()}};
    }
    if (const fs::path folder = pathOfVariable("XDG_RUNTIME_DIR"); !folder.empty())
        return {folder, {"orbelantine", "pipes"}};
    return {"/tmp", {"orbelantine-" + std::to_string(::geteuid()), "pipes"}};
}

// Those that are there stay as they are.
void makeParents(const fs::path& folder) {
    fs::path made;
    for (const fs::path& part : folder) {
        made /= part;
        ::mkdir(made.c_str(), kOwnerAlone);
    }
}

std::uint32_t refused(const PipePlace& place, const char* reason) {
    ORB_LOG(kLogWarning,
            "%s() the folder of the pipes, %s, can't be trusted: %s. Give it to this user alone "
            "(chmod 700), or name another in ORBELANTINE_PIPE_DIR.",
            place.text().c_str(), reason);
    return win32::kErrorAccessDenied;
}

std::uint32_t notOpened(const PipePlace& place) {
    const int error = errno;
    if (error == ELOOP || error == ENOTDIR)
        return refused(place, "it, or the one around it, is a link or no folder");
    ORB_LOG(kLogWarning, "%s() the folder of the pipes, %s, can't be opened: errno %d.",
            place.text().c_str(), error);
    return windowsError(error);
}

// The innermost holds the pipes; one around it may be seen, not changed, by others.
std::uint32_t checked(const PipePlace& place, int folder, bool isInnermost) {
    struct stat status {};

    if (::fstat(folder, &status) != 0)
        return notOpened(place);
    if (status.st_uid != ::geteuid())
        return refused(place, "it, or the one around it, belongs to another user");
    const mode_t forbidden = isInnermost ? S_IRWXG | S_IRWXO : S_IWGRP | S_IWOTH;
    if ((status.st_mode & forbidden) != 0)
        return refused(place, "others have access to it, or may write the one around it");
    return win32::kErrorSuccess;
}

} // namespace

std::uint32_t openPipeFolder(FileDescriptor& folder) {
    const PipePlace place = pipePlace();
    makeParents(place.base);
    const char* const base = place.base.empty() ? "." : place.base.c_str();
    FileDescriptor opened(::open(base, kFolderFlags));
    if (!opened)
        return notOpened(place);
    for (const std::string& name : place.below) {
        ::mkdirat(opened.get(), name.c_str(), kOwnerAlone);
        opened = FileDescriptor(::openat(opened.get(), name.c_str(), kFolderFlags | O_NOFOLLOW));
        if (!opened)
            return notOpened(place);
        if (const auto error = checked(place, opened.get(), &name == &place.below.back()))
            return error;
    }
    folder = std::move(opened);
    return win32::kErrorSuccess;
}

} // namespace orbelantine
