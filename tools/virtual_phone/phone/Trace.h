#pragma once

#include "tools/virtual_phone/phone/Screen.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace orbelantine::phone {

/// How the cursor came to a place.
enum class Stroke {
    Move,
    /// With a button held.
    Drag,
    /// By a delta larger than the screen, which only means to reach an edge.
    Sweep,
};

struct Step {
    Point to;
    Stroke stroke = Stroke::Move;

    bool operator==(const Step&) const = default;
};

enum class MarkKind { Left, Right, Middle, Scroll };

/// Something done at one place: `count` presses or turns in a row, and the wheel's sum.
struct Mark {
    MarkKind kind = MarkKind::Left;
    Point at;
    std::uint64_t count = 0;
    std::int64_t amount = 0;

    bool operator==(const Mark&) const = default;
};

/// A place to click, and where the click on it landed.
struct Aim {
    Point target;
    std::optional<Point> hit;

    bool operator==(const Aim&) const = default;
};

/// What the picture shows of a session: the latest steps and marks, so that memory stays bounded.
class Trace {
  public:
    static constexpr std::size_t kMaxSteps = 20'000;
    static constexpr std::size_t kMaxMarks = 2'000;
    static constexpr std::size_t kMaxAims = 2'000;

    explicit Trace(Point start)
        : mStart(start) {}

    void move(Point to, Stroke stroke);
    void mark(MarkKind kind, Point at, std::int64_t amount = 0);
    void aim(Point target);
    /// A click: at the earliest target that has none yet, if there is one.
    void hit(Point at);

    /// Where the first of steps() begins.
    [[nodiscard]] Point start() const { return mStart; }

    [[nodiscard]] const std::vector<Step>& steps() const { return mSteps; }

    [[nodiscard]] const std::vector<Mark>& marks() const { return mMarks; }

    [[nodiscard]] const std::vector<Aim>& aims() const { return mAims; }

  private:
    Point mStart;
    std::vector<Step> mSteps;
    std::vector<Mark> mMarks;
    std::vector<Aim> mAims;
    std::size_t mHits = 0;
};

} // namespace orbelantine::phone
