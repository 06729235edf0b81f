#include "bluetooth/linux/DeviceFolder.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"
#include "core/common/log/Log.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace orbelantine {

namespace {

namespace fs = std::filesystem;

fs::path folderOfEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    return value ? fs::path(value) : fs::path();
}

fs::path fallbackFolder() {
    return "/tmp/orbelantine-" + std::to_string(getuid());
}

// Anyone can make a folder of that name in /tmp, and stand in for the driver.
bool onlyUserWrites(const fs::path& folder) {
    struct stat status {};

    if (lstat(folder.c_str(), &status) != 0)
        return errno == ENOENT;
    return S_ISDIR(status.st_mode) && status.st_uid == getuid() &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool mayTrust(const fs::path& folder) {
    return folder.parent_path() != fallbackFolder() ||
           (onlyUserWrites(fallbackFolder()) && onlyUserWrites(folder));
}

bool isDevice(const fs::directory_entry& entry, bool presentOnly) {
    std::error_code ignored;
    return entry.is_socket(ignored) || (!presentOnly && entry.is_regular_file(ignored));
}

// Of the locale, a host may have left the "C" one in place. Wide characters are UTF-32 here.
std::wstring wideText(const fs::path& path) {
    const std::u32string text = path.u32string();
    return {text.begin(), text.end()};
}

void addPath(const fs::path& path, std::vector<std::wstring>& paths) {
    try {
        paths.push_back(wideText(path));
    } catch (const fs::filesystem_error&) {
        ORB_LOG(kLogWarning, "%s() left out, since its name is no UTF-8: %s", path.c_str());
    }
}

} // namespace

fs::path deviceFile(const std::wstring& path) {
    return {std::u32string(path.begin(), path.end())};
}

fs::path deviceFolder() {
    if (fs::path folder = folderOfEnvironment("ORBELANTINE_DEVICE_DIR"); !folder.empty())
        return folder;
    if (const fs::path folder = folderOfEnvironment("XDG_RUNTIME_DIR"); !folder.empty())
        return folder / "orbelantine" / "devices";
    return fallbackFolder() / "devices";
}

std::string classFolderName(const Guid& guid) {
    char text[37];
    const auto& d = guid.data4;
    (void)std::snprintf(text, sizeof(text), "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                        guid.data1, guid.data2, guid.data3, d[0], d[1], d[2], d[3], d[4], d[5],
                        d[6], d[7]);
    return text;
}

DriverApi::Error listDevices(const Guid& interfaceClass, bool presentOnly,
                             std::vector<std::wstring>& paths) {
    const fs::path folder = deviceFolder();
    if (!mayTrust(folder))
        return win32::kErrorAccessDenied;
    std::error_code ec;
    fs::directory_iterator entry(folder / classFolderName(interfaceClass), ec);
    for (; !ec && entry != fs::directory_iterator(); entry.increment(ec))
        if (isDevice(*entry, presentOnly))
            addPath(entry->path(), paths);
    std::ranges::sort(paths);
    const bool missing = ec == std::errc::no_such_file_or_directory;
    return !ec || missing ? win32::kErrorSuccess : windowsError(ec.value());
}

} // namespace orbelantine
