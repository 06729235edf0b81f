#pragma once

#include "core/common/errors/ErrorCode.h"
#include "input/sources/IMouseSource.h"

#include <string>

namespace orbelantine {

/// The events of a relative mouse: those of a mouse source, and what the phone tells of itself. An
/// event that a state doesn't override is logged and dropped.
class RelativeMouseState : public IMouseSource {
  public:
    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override;
    void start(const boost::shared_ptr<IInputContext>& context) override;
    void stop() override;
    /// False.
    [[nodiscard]] bool isAbsolute() override;
    void killFocus() override;
    void mouseMove(std::int32_t x, std::int32_t y, std::int32_t id) override;
    void mouseLButton(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                      bool reconnect) override;
    void mouseRButton(bool down, std::int32_t x, std::int32_t y, bool reconnect) override;
    void touchMove(std::int32_t x, std::int32_t y, std::int32_t id) override;
    void touch(bool down, std::int32_t x, std::int32_t y, std::int32_t id, bool reconnect) override;
    void rawMouseMove(std::int32_t dx, std::int32_t dy) override;
    void mouseWheel(bool up, std::int32_t x, std::int32_t y, std::int32_t amount) override;

    RelativeMouseState() = default;
    virtual ~RelativeMouseState() = default;
    RelativeMouseState(const RelativeMouseState&) = delete;
    RelativeMouseState& operator=(const RelativeMouseState&) = delete;

    /// The remote mouse info has started, or can't.
    virtual void rmiServerStarted(error_code ec);
    /// The phone's cursor, in pixels of the remote mouse info's viewport.
    virtual void rmiMousePosition(std::int32_t x, std::int32_t y);
    virtual void rmiMouseViewport(std::int32_t width, std::int32_t height);
    /// The phone's picture; `scale` is that of its screen's pixels to logical ones.
    virtual void rmiLogicalDimensions(std::int32_t width, std::int32_t height, double scale,
                                      std::int32_t inset);
    /// 1 (natural) to 4, in quarter turns.
    virtual void rotationChanged(std::int32_t rotation);
    [[nodiscard]] virtual std::string getName() const = 0;

  private:
    void onNotProcessed(const char* event) const;
};

} // namespace orbelantine
