#include "input/android/VelocityTrackerStrategy.h"

#include "input/android/IntegratingVelocityTrackerStrategy.h"
#include "input/android/LeastSquaresVelocityTrackerStrategy.h"
#include "input/android/LegacyVelocityTrackerStrategy.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace android {

namespace {

using Owned = std::unique_ptr<VelocityTrackerStrategy>;
using LeastSquares = LeastSquaresVelocityTrackerStrategy;
using Integrating = IntegratingVelocityTrackerStrategy;
using Legacy = LegacyVelocityTrackerStrategy;

struct Kind {
    std::string_view name;
    Owned (*create)(const VelocityTrackerStrategy* source);
    void (*copy)(const VelocityTrackerStrategy& source, VelocityTrackerStrategy& target);
};

template <class Strategy, auto... Settings>
Owned create(const VelocityTrackerStrategy* source) {
    if (source != nullptr)
        return std::make_unique<Strategy>(static_cast<const Strategy&>(*source));
    return std::make_unique<Strategy>(Settings...);
}

template <class Strategy>
void copy(const VelocityTrackerStrategy& source, VelocityTrackerStrategy& target) {
    static_cast<Strategy&>(target) = static_cast<const Strategy&>(source);
}

template <class Strategy, auto... Settings>
constexpr Kind kind(std::string_view name) {
    return {name, &create<Strategy, Settings...>, &copy<Strategy>};
}

constexpr Kind kKinds[] = {
    kind<LeastSquares, 1U, LeastSquares::WEIGHTING_NONE>("lsq1"),
    kind<LeastSquares, 2U, LeastSquares::WEIGHTING_NONE>("lsq2"),
    kind<LeastSquares, 3U, LeastSquares::WEIGHTING_NONE>("lsq3"),
    kind<LeastSquares, 2U, LeastSquares::WEIGHTING_DELTA>("wlsq2-delta"),
    kind<LeastSquares, 2U, LeastSquares::WEIGHTING_CENTRAL>("wlsq2-central"),
    kind<LeastSquares, 2U, LeastSquares::WEIGHTING_RECENT>("wlsq2-recent"),
    kind<Integrating, 1U>("int1"),
    kind<Integrating, 2U>("int2"),
    kind<Legacy>("legacy"),
};

const Kind* findKind(std::string_view name) {
    const auto* found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                     [name](const Kind& each) { return each.name == name; });
    return found == std::end(kKinds) ? nullptr : found;
}

} // namespace

std::unique_ptr<VelocityTrackerStrategy> createStrategy(const char* name,
                                                        const VelocityTrackerStrategy* source) {
    const Kind* found = findKind(name);
    return found == nullptr ? nullptr : found->create(source);
}

void copyStrategy(const char* name, const VelocityTrackerStrategy& source,
                  VelocityTrackerStrategy& target) {
    if (const Kind* found = findKind(name))
        found->copy(source, target);
}

} // namespace android
