#pragma once

namespace orbelantine {

/// What the host knows of the window that shows the phone.
class IWindowState {
  public:
    virtual ~IWindowState() = default;
    [[nodiscard]] virtual bool getHovered() = 0;
    /// Whether the window has the focus; hosts know it by this spelling.
    [[nodiscard]] virtual bool getFocued() = 0;
};

} // namespace orbelantine
