#include "bench/AllocationCounter.h"

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
    const auto step = static_cast<std::size_t>(alignment);
    return counted(std::aligned_alloc(step, (size + step - 1) / step * step));
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
