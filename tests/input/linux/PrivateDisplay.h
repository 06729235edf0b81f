#pragma once

#include "input/window/linux/XConnection.h"

#include <sys/types.h>

#include <memory>
#include <string>

namespace orbelantine::test {

/// An X server of its own with an empty screen of 1280 x 1024, the one that DISPLAY names, and a
/// client that has windows there and acts as the user.
class PrivateDisplay {
  public:
    PrivateDisplay();
    ~PrivateDisplay();
    PrivateDisplay(const PrivateDisplay&) = delete;
    PrivateDisplay& operator=(const PrivateDisplay&) = delete;

    /// False where the machine has no such server, and once it is killed.
    [[nodiscard]] bool runs() const { return mX != nullptr; }

    void kill();
    void setLayout(const std::string& layout) const;

    /// Of 400 x 300 at the place.
    [[nodiscard]] xcb_window_t makeWindow(std::int16_t x, std::int16_t y) const;
    void destroyWindow(xcb_window_t window) const;
    /// In this order, with nothing in between.
    void focus(std::initializer_list<xcb_window_t> windows) const;
    [[nodiscard]] xcb_window_t focused() const;
    /// By the kernel's code.
    void key(std::uint8_t code, bool down) const;
    void button(std::uint8_t button, bool down) const;
    void moveBy(std::int16_t dx, std::int16_t dy) const;

  private:
    void fake(std::uint8_t event, std::uint8_t detail, std::int16_t x = 0,
              std::int16_t y = 0) const;

    pid_t mServer = -1;
    std::string mName;
    std::shared_ptr<XConnection> mX;
};

} // namespace orbelantine::test
