#pragma once

#include <cstddef>

namespace orbelantine {

/// Room in which the calling thread can tell of the end of its stack, as long as this object lasts.
/// It ends on the same thread.
class AlternateStack {
  public:
    AlternateStack();
    ~AlternateStack();
    AlternateStack(const AlternateStack&) = delete;
    AlternateStack& operator=(const AlternateStack&) = delete;

  private:
    void* mRoom = nullptr;
};

inline constexpr std::size_t kAlternateStackSize = 0x10000;

} // namespace orbelantine
