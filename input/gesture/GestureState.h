#pragma once

#include <cstdint>
#include <string>

namespace orbelantine {

/// The events of a pointing device that a gesture is made of. One that a state doesn't override is
/// logged and dropped.
class GestureState {
  public:
    GestureState() = default;
    virtual ~GestureState() = default;
    GestureState(const GestureState&) = delete;
    GestureState& operator=(const GestureState&) = delete;

    /// Whether the movement belongs to a gesture.
    virtual bool mouseDelta(std::int32_t dx, std::int32_t dy);
    virtual bool mouseLButton(bool down);
    [[nodiscard]] virtual std::string getName() const = 0;

  private:
    void onNotProcessed(const char* event) const;
};

} // namespace orbelantine
