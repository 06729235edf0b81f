#include "tools/program/linux/StopSignal.h"

#include <sys/signalfd.h>

#include <cerrno>
#include <system_error>

namespace orbelantine::phone {

StopSignal::StopSignal() {
    sigset_t signals;
    ::sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaddset(&signals, signal);
    ::sigprocmask(SIG_BLOCK, &signals, &mFormerMask);
    mDescriptor = FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!mDescriptor)
        throw std::system_error(errno, std::generic_category(), "signalfd");
}

StopSignal::~StopSignal() {
    // A signal that has been acted on must not end the process after all.
    signalfd_siginfo taken{};
    while (::read(mDescriptor.get(), &taken, sizeof(taken)) > 0) {
    }
    ::sigprocmask(SIG_SETMASK, &mFormerMask, nullptr);
}

} // namespace orbelantine::phone
