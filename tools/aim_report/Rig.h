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

/// A kind of phone, held in one way.
struct Setup {
    /// 1 to 4.
    int rotation = 1;
    /// A phone with a scaled viewport, which accelerates by a curve; else one as Android does.
    bool scaled = false;
};

struct Size {
    int width = 0;
    int height = 0;
};

/// Such as "2, scaled".
[[nodiscard]] std::string nameOf(const Setup& setup);

/// A source before a phone, all in this process and under one clock. Places are pixels of the
/// surface that the source sees, except where those of the phone are said.
class Rig {
  public:
    struct Landing {
        /// Pixels of the phone.
        Point press;
        Point release;
    };

    /// Throws std::runtime_error, as the operations do, if the source does not answer.
    explicit Rig(const Setup& setup);
    Rig(const Rig&) = delete;
    Rig& operator=(const Rig&) = delete;
    ~Rig();

    [[nodiscard]] Landing click(Point at);
    /// A finger's way, 16 ms from place to place; it goes down on the first and up on the last.
    [[nodiscard]] Landing drag(std::span<const Point> way);

    [[nodiscard]] Size surface() const { return mSurfaceSize; }

    /// Where on the phone a place is meant to be.
    [[nodiscard]] Point onPhone(Point place) const;

    /// The phone, for as long as no operation runs.
    [[nodiscard]] phone::Phone& phone() { return mPhone; }

  private:
    void tellScreen();
    void awaitSource();

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
