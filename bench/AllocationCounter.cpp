#include "bench/AllocationCounter.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

thread_local std::uint64_t allocations = 0;

void* counted(void* memory) {
    ++allocations;
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

} // namespace

namespace orbelantine::bench {

AllocationCounter::AllocationCounter()
    : mStart(allocations) {}

std::uint64_t AllocationCounter::count() const {
    return allocations - mStart;
}

} // namespace orbelantine::bench

// The array and the non-throwing forms of the library call these.

void* operator new(std::size_t size) {
    return counted(std::malloc(size > 0 ? size : 1));
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    if (void* const memory = std::aligned_alloc(static_cast<std::size_t>(alignment), size))
        return memory;
    throw std::bad_alloc();
}

// Boost.Asio takes its queue's operations from here.
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    void* memory = nullptr;
    ++allocations;
    return posix_memalign(&memory, std::max(alignment, sizeof(void*)), size) == 0 ? memory
                                                                                  : nullptr;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
