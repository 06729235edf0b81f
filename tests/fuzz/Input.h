#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace orbelantine::fuzz {

/// The bytes that the fuzzer made up, read as choices. Behind the end everything is 0.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size)
        : mBytes(data, size) {}

    [[nodiscard]] bool empty() const { return mBytes.empty(); }

    std::uint8_t byte() {
        const std::span<const std::uint8_t> taken = bytes(1);
        return taken.empty() ? std::uint8_t{0} : taken[0];
    }

    /// Up to `size` bytes.
    std::span<const std::uint8_t> bytes(std::size_t size) {
        const std::span<const std::uint8_t> taken = mBytes.first(std::min(size, mBytes.size()));
        mBytes = mBytes.subspan(taken.size());
        return taken;
    }

  private:
    std::span<const std::uint8_t> mBytes;
};

} // namespace orbelantine::fuzz

/// Ends the run where the code and its model differ.
#define ORB_FUZZ_EXPECT(condition)                                                                 \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            std::fprintf(stderr, "%s:%d: expected %s\n", __FILE__, __LINE__, #condition);          \
            std::abort();                                                                          \
        }                                                                                          \
    } while (false)
