#include "core/common/crash/linux/ProfileFile.h"

#include "core/common/types/linux/FileDescriptor.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <thread>

namespace orbelantine {

namespace {

constexpr std::chrono::milliseconds kTurnBound{1000};
constexpr std::chrono::milliseconds kTurnPause{5};

std::string contentOf(int descriptor) {
    struct stat status {};

    if (descriptor < 0 || fstat(descriptor, &status) != 0 || status.st_uid != geteuid())
        return {};
    std::string content;
    std::array<char, 0x4000> piece{};
    ssize_t size = 0;
    while ((size = read(descriptor, piece.data(), piece.size())) > 0)
        content.append(piece.data(), static_cast<std::size_t>(size));
    return content;
}

FileDescriptor openProfile(const std::string& path) {
    return FileDescriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
}

bool isStillAt(const std::string& path, int descriptor) {
    struct stat opened {};

    struct stat present {};

    return fstat(descriptor, &opened) == 0 && stat(path.c_str(), &present) == 0 &&
           opened.st_dev == present.st_dev && opened.st_ino == present.st_ino;
}

/// The profile with its lock, until it is closed; without a lock if there is none to be had.
FileDescriptor takeTurn(const std::string& path) {
    const auto end = std::chrono::steady_clock::now() + kTurnBound;
    FileDescriptor file = openProfile(path);
    while (file && std::chrono::steady_clock::now() < end) {
        if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
            std::this_thread::sleep_for(kTurnPause);
            continue;
        }
        if (isStillAt(path, file.get()))
            break;
        // Another process has put a new one in its place meanwhile.
        file = openProfile(path);
    }
    return file;
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t size = write(descriptor, text.data(), text.size());
        if (size <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(size));
    }
    return true;
}

} // namespace

ProfileText readProfile(const std::string& path) {
    return ProfileText(contentOf(openProfile(path).get()));
}

bool changeProfile(const std::string& path, const std::function<void(ProfileText&)>& change) {
    const FileDescriptor turn = takeTurn(path);
    ProfileText profile(contentOf(turn.get()));
    change(profile);

    const std::string next = path + "." + std::to_string(getpid());
    // One left by a process of the same number that died.
    (void)unlink(next.c_str());
    const FileDescriptor file(
        open(next.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
    if (!file)
        return false;
    const bool replaced =
        writeAll(file.get(), profile.text()) && std::rename(next.c_str(), path.c_str()) == 0;
    if (!replaced)
        (void)unlink(next.c_str());
    return replaced;
}

} // namespace orbelantine
