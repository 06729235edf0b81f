// gesture_echo WINDOW: flicks of the mouse over an X11 window go on, until the end of the input.
#include "examples/gesture_echo/GestureEcho.h"

#include "input/pointer/WindowsPointerInjector.h"
#include "input/window/WindowsHwndInputContext.h"

#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <limits>
#include <string>

int main(int argc, char** argv) {
    using namespace orbelantine;
    char* end = nullptr;
    const std::uintptr_t window = argc == 2 ? std::strtoul(argv[1], &end, 0) : 0;
    if (window == 0 || *end != '\0') {
        std::cerr
            << "usage: gesture_echo WINDOW    (as xwininfo or xdotool selectwindow name it)\n";
        return 2;
    }
    try {
        // The window's context outlives what listens to it.
        const auto surface =
            WindowsHwndInputContext::create(true, reinterpret_cast<void*>(window), false);
        WindowsPointerInjector injector;
        const example::GestureEcho echo(*surface, injector);
        std::cout << "Press, move quickly and let go over the window; the pointer goes on."
                  << std::endl;
        std::cin.ignore(std::numeric_limits<std::streamsize>::max());
    } catch (const std::exception& failure) {
        std::cerr << "gesture_echo: " << failure.what() << '\n';
        return 1;
    }
    return 0;
}
