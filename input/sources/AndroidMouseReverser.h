#pragma once

#include "core/common/run/Clock.h"
#include "input/sources/IMouseReverser.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>

namespace orbelantine {

class VelocityControl;

/// Holds a live model of the phone's pointer acceleration, fed with what goes out, and searches
/// for the delta that it accelerates to the one wanted.
class AndroidMouseReverser final : public IMouseReverser {
  public:
    explicit AndroidMouseReverser(IClock& clock = IClock::system());
    virtual ~AndroidMouseReverser() = default;

    /// The result is cut towards zero.
    void applyMove(std::int32_t& dx, std::int32_t& dy, const std::int64_t& timeNs) override;
    /// Leaves the model as it is. Comes within 2 of the wanted delta on the axis of the signed
    /// maximum, or as near as a search of whole numbers gets; the other axis follows in
    /// proportion. A delta whose signed maximum is 0 stays unchanged.
    void reverse(std::int32_t& dx, std::int32_t& dy) override;

  private:
    IClock& mClock;
    boost::shared_ptr<VelocityControl> mControl;
    std::int64_t mStartNs;
};

} // namespace orbelantine
