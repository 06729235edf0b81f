#pragma once

namespace orbelantine {

/// What a program may ask of the operating system.
class ISystemOp {
  public:
    virtual ~ISystemOp() = default;
    virtual void start() = 0;
    virtual void stop() = 0;
    /// -1 where it can't be told.
    [[nodiscard]] virtual int status() = 0;
};

namespace windows_osal {

/// Asks nothing of it.
class WindowsSystemOp final : public ISystemOp {
  public:
    void start() override;
    void stop() override;
    [[nodiscard]] int status() override;
};

} // namespace windows_osal

} // namespace orbelantine
