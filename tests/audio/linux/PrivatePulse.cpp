#include "tests/audio/linux/PrivatePulse.h"

#include <sys/socket.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace orbelantine::test {

PrivatePulse::PrivatePulse()
    : mFolder((std::filesystem::temp_directory_path() / "orb-pulse-XXXXXX").string()) {
    if (::mkdtemp(mFolder.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), mFolder);
    ::setenv("PULSE_SERVER", ("unix:" + mFolder + "/native").c_str(), 1);
    start();
}

PrivatePulse::~PrivatePulse() {
    stop();
    ::unsetenv("PULSE_SERVER");
    std::error_code ignored;
    std::filesystem::remove_all(mFolder, ignored);
}

void PrivatePulse::start() {
    // Its parent leaves once it listens. The connection for commands holds it back from leaving.
    const std::string command =
        "F=" + mFolder +
        "; env -u DBUS_SESSION_BUS_ADDRESS -u DISPLAY HOME=$F XDG_RUNTIME_DIR=$F"
        " PULSE_RUNTIME_PATH=$F PULSE_STATE_PATH=$F pulseaudio -n --daemonize=yes"
        " --exit-idle-time=10 --use-pid-file=no --disable-shm=yes"
        " -L \"module-native-protocol-unix auth-anonymous=1 socket=$F/native\""
        " -L \"module-cli-protocol-unix socket=$F/cli\" >/dev/null 2>&1";
    if (std::system(command.c_str()) != 0)
        return;
    mCommands.connect(boost::asio::local::stream_protocol::endpoint(mFolder + "/cli"));
    ucred peer{};
    socklen_t size = sizeof(peer);
    ::getsockopt(mCommands.rdbuf()->socket().native_handle(), SOL_SOCKET, SO_PEERCRED, &peer,
                 &size);
    mDaemon = peer.pid;
    readAnswer();
}

void PrivatePulse::stop() {
    if (!runs())
        return;
    ::kill(mDaemon, SIGKILL);
    mDaemon = -1;
    readAnswer();
    mCommands.clear();
    mCommands.close();
}

void PrivatePulse::freeze() const {
    ::kill(mDaemon, SIGSTOP);
}

void PrivatePulse::thaw() const {
    ::kill(mDaemon, SIGCONT);
}

std::string PrivatePulse::tell(const std::string& command) {
    mCommands << command << std::endl;
    return readAnswer();
}

std::string PrivatePulse::readAnswer() {
    std::string answer;
    while (!answer.ends_with(">>> ") && mCommands.peek() != EOF)
        answer.push_back(static_cast<char>(mCommands.get()));
    return answer;
}

} // namespace orbelantine::test
