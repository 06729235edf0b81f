#pragma once

#include "bluetooth/DriverProtocol.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// One report to send, made on the sender's stack. `data` points into the record itself or is null
/// while there is no report, so a record is never copied.
struct HIDReport {
    HIDReport() = default;
    HIDReport(const HIDReport&) = delete;
    HIDReport& operator=(const HIDReport&) = delete;

    void clear() noexcept {
        bytes.fill(0);
        data = nullptr;
        size = 0;
    }

    alignas(driver::kBufferAlignment) std::array<std::uint8_t, 24> bytes{};
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
};

} // namespace orbelantine
