#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace orbelantine::bluez {

enum class SdpType : std::uint8_t {
    Nil,
    Unsigned,
    Signed,
    Uuid,
    Text,
    Boolean,
    Sequence,
    Alternate,
    Url
};

struct SdpElement {
    SdpType type;
    /// Without the header; numbers are big endian.
    std::span<const std::uint8_t> value;
};

/// Reads data elements that stand one behind the other.
class SdpElements {
  public:
    explicit SdpElements(std::span<const std::uint8_t> bytes)
        : mBytes(bytes) {}

    [[nodiscard]] bool atEnd() const { return mBytes.empty(); }

    /// Empty where there is none that is whole, of a type that there is and in one of its sizes.
    [[nodiscard]] std::optional<SdpElement> next();

  private:
    std::optional<std::span<const std::uint8_t>> take(std::uint64_t size);
    std::optional<std::uint64_t> takeSize(SdpType type, unsigned sizeIndex);

    std::span<const std::uint8_t> mBytes;
};

/// Up to 8 bytes.
[[nodiscard]] std::uint64_t bigEndian(std::span<const std::uint8_t> bytes);

} // namespace orbelantine::bluez
