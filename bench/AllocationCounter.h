#pragma once

#include <cstdint>

namespace orbelantine::bench {

/// Counts what the calling thread allocates from the heap while it lives. For programs that link
/// AllocationCounter.cpp, which replaces the global operator new and aligned_alloc.
class AllocationCounter {
  public:
    AllocationCounter();
    /// The allocations since construction.
    [[nodiscard]] std::uint64_t count() const;

  private:
    std::uint64_t mStart;
};

} // namespace orbelantine::bench
