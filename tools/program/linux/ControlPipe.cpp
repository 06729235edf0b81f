#include "tools/program/linux/ControlPipe.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace orbelantine::phone {

namespace {

constexpr mode_t kPipeMode = 0600;

[[noreturn]] void fail(const std::string& path) {
    throw std::runtime_error("cannot make the FIFO " + path + ": " + std::strerror(errno));
}

/// A FIFO that a program left behind at its sudden end.
bool isStale(const std::string& path) {
    struct stat status {};

    if (::lstat(path.c_str(), &status) != 0 || !S_ISFIFO(status.st_mode))
        return false;
    const FileDescriptor writer(::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
    return !writer && errno == ENXIO;
}

void makeFifo(const std::string& path) {
    if (::mkfifo(path.c_str(), kPipeMode) == 0)
        return;
    const int error = errno;
    if (error == EEXIST && isStale(path) && ::unlink(path.c_str()) == 0 &&
        ::mkfifo(path.c_str(), kPipeMode) == 0)
        return;
    errno = error;
    fail(path);
}

} // namespace

ControlPipe::ControlPipe(std::string path, Receive receive)
    : mPath(std::move(path))
    , mReceive(std::move(receive)) {
    makeFifo(mPath);
    // Held open for writing too: with the last of its writers gone, the FIFO would poll as hung up.
    mReader = FileDescriptor(::open(mPath.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    if (!mReader)
        fail(mPath);
}

ControlPipe::~ControlPipe() {
    ::unlink(mPath.c_str());
}

void ControlPipe::read() {
    std::array<char, 4096> buffer{};
    const ssize_t size = ::read(mReader.get(), buffer.data(), buffer.size());
    if (size > 0)
        mReceive(std::string_view(buffer.data(), static_cast<std::size_t>(size)));
}

} // namespace orbelantine::phone
