#include "tools/virtual_stack/linux/PrivateBus.h"

#include "core/common/types/linux/FileDescriptor.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orbelantine::stack {

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

/// How the daemon begins: its address goes to `output`, its complaints nowhere. It takes none of
/// the signals that this process holds back or gets from its terminal.
class SpawnSettings {
  public:
    explicit SpawnSettings(int output) {
        ::posix_spawn_file_actions_init(&mActions);
        ::posix_spawn_file_actions_adddup2(&mActions, output, STDOUT_FILENO);
        ::posix_spawn_file_actions_addopen(&mActions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawnattr_init(&mAttributes);
        sigset_t none;
        ::sigemptyset(&none);
        ::posix_spawnattr_setsigmask(&mAttributes, &none);
        ::posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
    }

    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    ~SpawnSettings() {
        ::posix_spawnattr_destroy(&mAttributes);
        ::posix_spawn_file_actions_destroy(&mActions);
    }

    /// -1 if there is no such program.
    [[nodiscard]] pid_t spawn(const char* const* arguments) const {
        pid_t process = -1;
        const int error = ::posix_spawnp(&process, arguments[0], &mActions, &mAttributes,
                                         const_cast<char* const*>(arguments), environ);
        return error == 0 ? process : -1;
    }

  private:
    posix_spawn_file_actions_t mActions{};
    posix_spawnattr_t mAttributes{};
};

} // namespace

PrivateBus::PrivateBus()
    : mFolder((std::filesystem::temp_directory_path() / "orb-bus-XXXXXX").string()) {
    if (::mkdtemp(mFolder.data()) == nullptr)
        fail("mkdtemp");
    start();
}

PrivateBus::~PrivateBus() {
    stop();
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
}

void PrivateBus::stop() {
    if (!runs())
        return;
    ::kill(mDaemon, SIGKILL);
    ::waitpid(std::exchange(mDaemon, -1), nullptr, 0);
}

void PrivateBus::start() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        fail("pipe2");
    const FileDescriptor reader(ends[0]);
    FileDescriptor writer(ends[1]);
    const std::string listen = "--address=" + address();
    const char* const arguments[] = {"dbus-daemon",       "--session",    "--nofork", "--nopidfile",
                                     "--print-address=1", listen.c_str(), nullptr};
    mDaemon = SpawnSettings(writer.get()).spawn(arguments);
    writer = FileDescriptor();
    // It prints its address once it listens.
    std::array<char, 512> line{};
    ssize_t size = -1;
    do {
        size = ::read(reader.get(), line.data(), line.size());
    } while (size < 0 && errno == EINTR);
    if (size <= 0)
        stop();
}

} // namespace orbelantine::stack
