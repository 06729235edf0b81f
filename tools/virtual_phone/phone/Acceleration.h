#pragma once

#include "core/common/run/Clock.h"
#include "input/android/VelocityControl.h"

#include <array>
#include <optional>
#include <string_view>

namespace orbelantine::phone {

/// What a phone makes of a relative report: a pixel for each count; by its speed, as Android does;
/// or by its length, as phones with a scaled viewport do.
enum class Acceleration { None, Android, Curve };

/// In the order of Acceleration.
inline constexpr std::array<const char*, 3> kAccelerationNames = {"none", "android", "curve"};

[[nodiscard]] std::optional<Acceleration> parseAcceleration(std::string_view text);
[[nodiscard]] const char* nameOf(Acceleration acceleration);

/// A way on the screen, in pixels and parts of them.
struct Way {
    double x = 0;
    double y = 0;
};

/// Accelerates report by report, each as it comes; knows nothing of the screen's rotation.
class Accelerator {
  public:
    /// `clock` outlives the accelerator.
    Accelerator(Acceleration kind, IClock& clock);

    /// The way of a report's deltas on a screen of this viewport scale.
    [[nodiscard]] Way move(int dx, int dy, double scale);
    /// Forgets every move.
    void use(Acceleration kind);

    [[nodiscard]] Acceleration kind() const { return mKind; }

  private:
    [[nodiscard]] Way bySpeed(int dx, int dy);

    Acceleration mKind;
    IClock& mClock;
    VelocityControl mModel;
};

} // namespace orbelantine::phone
