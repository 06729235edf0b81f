#pragma once

#include "input/sources/IMouseSource.h"

namespace orbelantine {

/// Sends nothing, and takes pointers in screen coordinates.
class IMouseSource::Dummy final : public IMouseSource {
  public:
    virtual ~Dummy() = default;
    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override;
    void start(const boost::shared_ptr<IInputContext>& context) override;
    void stop() override;
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
};

} // namespace orbelantine
