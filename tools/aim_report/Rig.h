#pragma once

#include "tools/aim_report/Link.h"
#include "tools/aim_report/StepClock.h"
#include "tools/aim_report/Surface.h"
#include "tools/virtual_phone/log/EventLog.h"
#include "tools/virtual_phone/phone/Phone.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <span>
#include <string>

namespace orbelantine {
class IMouseSource;
} // namespace orbelantine

namespace orbelantine::aim {

using phone::Point;

inline constexpr int kRotations = 4;

/// A kind of phone, held in one way.
struct Setup {
    /// 1 to kRotations.
    int rotation = 1;
    /// A phone with a scaled viewport, which accelerates by a curve; else one as Android does.
    bool scaled = false;
};

/// How often a finger's place is raised while it is down.
enum class Pace {
    /// With each of its events, every 16 ms.
    Each,
    /// 45 ms or more apart: by then the phone has forgotten how fast its cursor was.
    Paced,
};

struct Size {
    int width = 0;
    int height = 0;
};

[[nodiscard]] double distance(Point a, Point b);

/// Such as "2, scaled".
[[nodiscard]] std::string nameOf(const Setup& setup);

/// A source before a phone, all in this process and under one clock. Places are pixels of the
/// surface that the source sees, except where those of the phone are said.
class Rig {
  public:
    /// What became of a gesture, in pixels of the phone.
    struct Landing {
        Point press;
        /// Deltas from the parked cursor to the press.
        unsigned legs = 0;
        Point release;
        /// The farthest that the cursor was from the finger once a place was raised.
        double path = 0;
    };

    /// Throws std::runtime_error, as the operations do, if the source does not answer.
    explicit Rig(const Setup& setup);
    Rig(const Rig&) = delete;
    Rig& operator=(const Rig&) = delete;
    ~Rig();

    [[nodiscard]] Landing click(Point at);
    /// A finger's way, 16 ms from place to place; it goes down on the first and up on the last,
    /// which is raised at any pace.
    [[nodiscard]] Landing drag(std::span<const Point> way, Pace pace);

    [[nodiscard]] Size surface() const { return mSurfaceSize; }

    /// Where on the phone a place is meant to be.
    [[nodiscard]] Point onPhone(Point place) const;

    /// The phone, for as long as no operation runs.
    [[nodiscard]] phone::Phone& phone() { return mPhone; }

  private:
    void tellScreen();
    void awaitSource();
    [[nodiscard]] Landing landing() const;

    phone::Screen mScreen;
    Size mSurfaceSize;
    StepClock mClock;
    phone::EventLog mLog{nullptr, nullptr};
    phone::Phone mPhone;
    boost::shared_ptr<Surface> mSurface;
    boost::shared_ptr<Link> mLink;
    boost::shared_ptr<IMouseSource> mSource;
    unsigned mWaits = 0;
};

} // namespace orbelantine::aim
