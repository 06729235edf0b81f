#include "tools/virtual_phone/driver/linux/DeviceSocket.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace orbelantine::phone {

namespace {

constexpr const char* kInterfaceClass = "4df52311-7aa8-4d3c-b58b-3749826e10a6";
/// By this mark the library knows a device of the driver.
constexpr const char* kNamePrefix = "{hid}_localmfg#";
constexpr mode_t kOwnerOnly = 0700;
constexpr int kSocketFlags = SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK;

[[noreturn]] void fail(const std::string& what, int error) {
    throw std::runtime_error(what + ": " + std::strerror(error));
}

void makeFolders(const std::string& path) {
    for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
        const std::string folder = path.substr(0, end);
        if (::mkdir(folder.c_str(), kOwnerOnly) != 0 && errno != EEXIST)
            fail("cannot make the folder " + folder, errno);
        if (end == std::string::npos)
            return;
    }
}

FileDescriptor openFolder(const std::string& path) {
    makeFolders(path);
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        fail("cannot open the folder " + path, errno);

    struct stat status {};

    if (::fstat(folder.get(), &status) != 0)
        fail("cannot read the folder " + path, errno);
    // Whoever owns the folder could put a socket of their own in the phone's place.
    if (status.st_uid != ::geteuid() && ::geteuid() != 0)
        throw std::runtime_error("the folder " + path +
                                 " belongs to another user: name one of yours with --devices");
    return folder;
}

sockaddr_un socketAddress(const std::string& path) {
    sockaddr_un address{};
    constexpr std::size_t kLongest = sizeof(address.sun_path) - 1;
    if (path.size() > kLongest)
        throw std::runtime_error(path + " is longer than the " + std::to_string(kLongest) +
                                 " bytes of a socket's name: choose a shorter --devices");
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, path.size());
    return address;
}

const sockaddr* generic(const sockaddr_un& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? "" : value;
}

} // namespace

std::string defaultDeviceFolder() {
    if (std::string folder = environment("ORBELANTINE_DEVICE_DIR"); !folder.empty())
        return folder;
    if (const std::string folder = environment("XDG_RUNTIME_DIR"); !folder.empty())
        return folder + "/orbelantine/devices";
    return "/tmp/orbelantine-" + std::to_string(::getuid()) + "/devices";
}

DeviceSocket::DeviceSocket(const std::string& devices, const Address& address)
    : mName(kNamePrefix + toDigits(address))
    , mPath(devices + "/" + kInterfaceClass + "/" + mName)
    , mFolder(openFolder(devices + "/" + kInterfaceClass)) {
    // Two phones that start at once must not both find a stale socket.
    if (::flock(mFolder.get(), LOCK_EX) != 0)
        fail("cannot lock the folder of " + mPath, errno);
    removeStale();
    listen();
    ::flock(mFolder.get(), LOCK_UN);
}

DeviceSocket::~DeviceSocket() {
    ::unlinkat(mFolder.get(), mName.c_str(), 0);
}

void DeviceSocket::removeStale() const {
    struct stat status {};

    if (::fstatat(mFolder.get(), mName.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT)
            return;
        fail("cannot read " + mPath, errno);
    }
    if (!S_ISSOCK(status.st_mode))
        throw std::runtime_error(mPath + " is there and is not a socket: remove it first");
    const FileDescriptor probe(::socket(AF_UNIX, kSocketFlags, 0));
    const sockaddr_un address = socketAddress(mPath);
    const bool refused =
        ::connect(probe.get(), generic(address), sizeof(address)) != 0 && errno == ECONNREFUSED;
    if (!refused)
        throw std::runtime_error("another phone is listening at " + mPath +
                                 ": stop it, or choose another --address or --devices");
    if (::unlinkat(mFolder.get(), mName.c_str(), 0) != 0)
        fail("cannot remove the stale " + mPath, errno);
}

void DeviceSocket::listen() {
    constexpr int kBacklog = 16;
    mListener = FileDescriptor(::socket(AF_UNIX, kSocketFlags, 0));
    if (!mListener)
        fail("cannot make a socket", errno);
    const sockaddr_un address = socketAddress(mPath);
    if (::bind(mListener.get(), generic(address), sizeof(address)) != 0)
        fail("cannot bind " + mPath, errno);
    if (::listen(mListener.get(), kBacklog) != 0)
        fail("cannot listen at " + mPath, errno);
}

} // namespace orbelantine::phone
