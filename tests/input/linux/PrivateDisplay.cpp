#include "tests/input/linux/PrivateDisplay.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace orbelantine::test {

PrivateDisplay::PrivateDisplay() {
    int ends[2];
    if (::pipe(ends) != 0)
        return;
    const std::string out = std::to_string(ends[1]);
    mServer = ::fork();
    if (mServer == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
        ::execlp("Xvfb", "Xvfb", "-displayfd", out.c_str(), "-screen", "0", "1280x1024x24",
                 "-nolisten", "tcp", "-noreset", nullptr);
        ::_exit(1);
    }
    ::close(ends[1]);
    mName = ":";
    for (char digit = 0; ::read(ends[0], &digit, 1) == 1 && digit != '\n';)
        mName.push_back(digit);
    ::close(ends[0]);
    ::setenv("DISPLAY", mName.c_str(), 1);
    static_cast<void>(XConnection::open(mX));
}

PrivateDisplay::~PrivateDisplay() {
    kill();
    ::unsetenv("DISPLAY");
}

void PrivateDisplay::kill() {
    mX.reset();
    if (mServer <= 0)
        return;
    ::kill(mServer, SIGKILL);
    ::waitpid(std::exchange(mServer, -1), nullptr, 0);
    static_cast<void>(::unlink(("/tmp/.X" + mName.substr(1) + "-lock").c_str()));
    static_cast<void>(::unlink(("/tmp/.X11-unix/X" + mName.substr(1)).c_str()));
}

void PrivateDisplay::setLayout(const std::string& layout) const {
    if (std::system(("setxkbmap -display " + mName + " " + layout).c_str()) != 0)
        throw std::runtime_error("There is no layout " + layout + ".");
}

xcb_window_t PrivateDisplay::makeWindow(std::int16_t x, std::int16_t y) const {
    const xcb_window_t window = mX->library().xcb_generate_id(mX->get());
    mX->library().xcb_create_window(mX->get(), 0, window, mX->root(), x, y, 400, 300, 0,
                                    XCB_WINDOW_CLASS_INPUT_OUTPUT, 0, 0, nullptr);
    mX->library().xcb_map_window(mX->get(), window);
    static_cast<void>(mX->focus());
    return window;
}

void PrivateDisplay::destroyWindow(xcb_window_t window) const {
    mX->library().xcb_destroy_window(mX->get(), window);
    static_cast<void>(mX->focus());
}

void PrivateDisplay::focus(std::initializer_list<xcb_window_t> windows) const {
    for (const xcb_window_t window : windows)
        mX->library().xcb_set_input_focus(mX->get(), XCB_INPUT_FOCUS_PARENT, window,
                                          XCB_CURRENT_TIME);
    static_cast<void>(mX->focus());
}

xcb_window_t PrivateDisplay::focused() const {
    return mX->focus()->focus;
}

void PrivateDisplay::key(std::uint8_t code, bool down) const {
    fake(down ? XCB_KEY_PRESS : XCB_KEY_RELEASE, static_cast<std::uint8_t>(code + 8));
}

void PrivateDisplay::button(std::uint8_t button, bool down) const {
    fake(down ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE, button);
}

void PrivateDisplay::moveBy(std::int16_t dx, std::int16_t dy) const {
    constexpr std::uint8_t kRelative = 1;
    fake(XCB_MOTION_NOTIFY, kRelative, dx, dy);
}

void PrivateDisplay::fake(std::uint8_t event, std::uint8_t detail, std::int16_t x,
                          std::int16_t y) const {
    mX->library().xcb_test_fake_input(mX->get(), event, detail, XCB_CURRENT_TIME, XCB_NONE, x, y,
                                      0);
    static_cast<void>(mX->focus());
}

} // namespace orbelantine::test
