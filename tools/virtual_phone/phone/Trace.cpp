#include "tools/virtual_phone/phone/Trace.h"

#include <algorithm>

namespace orbelantine::phone {

void Trace::move(Point to, Stroke stroke) {
    if (to == (mSteps.empty() ? mStart : mSteps.back().to))
        return;
    if (mSteps.size() == kMaxSteps) {
        const auto half = mSteps.begin() + kMaxSteps / 2;
        mStart = std::prev(half)->to;
        mSteps.erase(mSteps.begin(), half);
    }
    mSteps.push_back({to, stroke});
}

void Trace::mark(MarkKind kind, Point at, std::int64_t amount) {
    const bool repeats = !mMarks.empty() && mMarks.back().kind == kind && mMarks.back().at == at;
    if (!repeats && mMarks.size() == kMaxMarks)
        mMarks.erase(mMarks.begin(), mMarks.begin() + kMaxMarks / 2);
    if (!repeats)
        mMarks.push_back({kind, at});
    ++mMarks.back().count;
    mMarks.back().amount += amount;
}

void Trace::aim(Point target) {
    constexpr std::size_t kHalf = kMaxAims / 2;
    if (mAims.size() == kMaxAims) {
        mAims.erase(mAims.begin(), mAims.begin() + kHalf);
        mHits -= std::min(mHits, kHalf);
    }
    mAims.push_back({target, std::nullopt});
}

void Trace::hit(Point at) {
    if (mHits < mAims.size())
        mAims[mHits++].hit = at;
}

} // namespace orbelantine::phone
