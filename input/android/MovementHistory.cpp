#include "input/android/MovementHistory.h"

#include <algorithm>
#include <type_traits>

namespace android {

static_assert(std::is_trivially_copyable_v<MovementHistory>);

void MovementHistory::clear() {
    mIndex = 0;
    // Every walk back ends at a slot without the pointer, so the others may keep what they hold.
    mMovements[0].idBits = {};
}

void MovementHistory::clearPointers(IdBits ids) {
    // Positions are found by their rank among the ids: those that stay close up.
    Movement& movement = mMovements[mIndex];
    const IdBits before = movement.idBits;
    std::uint32_t kept = 0;
    for (IdBits left = before; !left.isEmpty(); left.remove(IdBits::of(left.first()))) {
        if (!ids.has(left.first()))
            movement.positions[kept++] = movement.positions[before.rank(left.first())];
    }
    movement.idBits.remove(ids);
}

void MovementHistory::add(std::int64_t eventTime, IdBits ids, const Position* positions) {
    mIndex = newer(mIndex);
    Movement& movement = mMovements[mIndex];
    movement.eventTime = eventTime;
    movement.idBits = ids;
    std::copy_n(positions, ids.count(), movement.positions.begin());
}

} // namespace android
