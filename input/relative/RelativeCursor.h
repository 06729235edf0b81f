#pragma once

#include "input/context/IInputContext.h"

#include <cstdint>

namespace orbelantine {

/// The arithmetic of a phone's cursor: places in its logical pixels, deltas, no state. Whatever
/// falls outside of 32 bits is held at their limits.

struct CursorPoint {
    /// In the model of the cursor: the left button is held. In a move: it goes down, or up, there.
    enum Flags : std::uint32_t { LeftDown = 1, LeftUp = 2 };

    std::int32_t x = 0;
    std::int32_t y = 0;
    std::uint32_t flags = 0;
    /// Nanoseconds of the monotonic clock.
    std::int64_t timeNs = 0;
};

struct CursorDelta {
    std::int32_t dx = 0;
    std::int32_t dy = 0;
};

/// As far as one report can move the cursor, so as wide or high as a screen may be.
inline constexpr std::int32_t kReach = 32767;

/// Aligned so that an atomic one is a plain word for every compiler.
struct alignas(std::int64_t) CursorExtent {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

[[nodiscard]] std::int32_t saturated(std::int64_t value);

/// Whether a dimension of a screen, or what is set in from its edge, may be told of a phone.
[[nodiscard]] bool isWithinReach(std::int32_t dimension);

[[nodiscard]] CursorExtent extentOf(const IInputContext::Rect& rect);

/// `to` seen from `from`.
[[nodiscard]] CursorDelta difference(const CursorPoint& to, const CursorPoint& from);

/// Whether a delta changes on its way into the frame of a phone turned by `rotation` (1 to 4).
[[nodiscard]] bool isTurned(std::int32_t rotation);
[[nodiscard]] CursorDelta rotated(CursorDelta delta, std::int32_t rotation);

/// The logical pixels of a phone whose picture is `picture` and whose screen has `scale` pixels to
/// one of them. Only a scale above 1 matters.
[[nodiscard]] CursorExtent logicalExtent(CursorExtent picture, double scale);

/// What a mouse's own delta comes to at a system mouse speed, in proportion.
[[nodiscard]] std::int32_t draggedLinearly(std::int32_t delta, std::uint32_t speed, float factor);
/// The same with its square root taken, for a scaled screen.
[[nodiscard]] std::int32_t draggedByRoot(std::int32_t delta, std::uint32_t speed, float factor);

/// `value` out of `from` as a part of `to`, rounded in single precision; 0 if `from` and it are 0.
[[nodiscard]] std::int32_t rescaled(std::int32_t value, std::int32_t from, std::int32_t to);
/// A point of `surface`, or its nearest edge, as a place within `logical`. The rest of it stays.
[[nodiscard]] CursorPoint toLogical(CursorPoint point, CursorExtent surface, CursorExtent logical);

/// The nearest place within `logical`; the origin if that is empty.
[[nodiscard]] CursorPoint clamped(CursorPoint point, CursorExtent logical);
/// Where the cursor comes to rest after `delta`. The rest of the point stays.
[[nodiscard]] CursorPoint advanced(CursorPoint point, CursorDelta delta, CursorExtent logical);

/// Too long for a scaled screen to take at once.
[[nodiscard]] bool isLongMove(CursorDelta move);
/// Where the first leg of a long move from `from` ends.
[[nodiscard]] CursorPoint firstLegEnd(const CursorPoint& from, CursorDelta move);
/// The delta that a scaled screen's acceleration turns into `move`, which isn't long or nothing.
[[nodiscard]] CursorDelta curved(CursorDelta move);

} // namespace orbelantine
