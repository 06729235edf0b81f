#pragma once

#include <cstdint>

namespace orbelantine {

/// The call that presses and moves the local pointer as its user would, in the shape of Win32's
/// SendInput. Any thread may call.
class PointerApi {
  public:
    using Error = std::uint32_t;

    /// Of INPUT, what a mouse does.
    struct MouseInput {
        std::int32_t dx;
        std::int32_t dy;
        std::uint32_t mouseData;
        std::uint32_t flags;
        std::uint32_t time;
        std::uintptr_t extraInfo;
    };

    static constexpr std::uint32_t kMove = 1;
    static constexpr std::uint32_t kLeftDown = 2;
    static constexpr std::uint32_t kLeftUp = 4;
    static constexpr std::uint32_t kRightDown = 8;
    static constexpr std::uint32_t kRightUp = 16;

    virtual ~PointerApi() = default;
    /// 0, or the system's number of why nothing was injected.
    [[nodiscard]] virtual Error sendInput(const MouseInput& input) = 0;

    /// The system's own.
    [[nodiscard]] static PointerApi& system();
};

} // namespace orbelantine
