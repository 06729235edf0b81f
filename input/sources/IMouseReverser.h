#pragma once

#include <cstdint>

namespace orbelantine {

class IClock;

/// Undoes what a phone's own pointer acceleration does to a relative mouse. Deltas are in the
/// phone's cursor units on the one side and mouse counts on the other. One thread at a time.
class IMouseReverser {
  public:
    class Dummy;

    /// Tells of a delta that went out at `timeNs`, in nanoseconds of the monotonic clock, and
    /// turns it into the delta that the phone's cursor makes of it.
    virtual void applyMove(std::int32_t& dx, std::int32_t& dy, const std::int64_t& timeNs) = 0;
    /// Turns a wanted delta of the phone's cursor into the delta to send now.
    virtual void reverse(std::int32_t& dx, std::int32_t& dy) = 0;

  protected:
    // Destroyed as what it was made, by the shared pointer that owns it.
    ~IMouseReverser() = default;
};

/// For a phone without acceleration: every delta stays as it is.
class IMouseReverser::Dummy final : public IMouseReverser {
  public:
    explicit Dummy(IClock& /*clock*/) {}

    virtual ~Dummy() = default;
    void applyMove(std::int32_t& dx, std::int32_t& dy, const std::int64_t& timeNs) override;
    void reverse(std::int32_t& dx, std::int32_t& dy) override;
};

} // namespace orbelantine
