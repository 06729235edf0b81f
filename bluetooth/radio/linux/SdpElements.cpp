#include "bluetooth/radio/linux/SdpElements.h"

#include <iterator>

namespace orbelantine::bluez {

namespace {

/// An element begins with a byte: the type in its upper five bits, in the lower three the size.
///
///     0 to 4   1, 2, 4, 8, 16 bytes; nil has none
///     5 to 7   the next 1, 2, 4 bytes tell
constexpr unsigned kSizeBits = 3;
constexpr unsigned kFirstToldSize = 5;

/// By its type, a bit for each size that it may have.
constexpr std::uint8_t kSizesOfTypes[] = {
    0b0000'0001, 0b0001'1111, 0b0001'1111, 0b0001'0110, 0b1110'0000,
    0b0000'0001, 0b1110'0000, 0b1110'0000, 0b1110'0000,
};

} // namespace

std::uint64_t bigEndian(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0;
    for (const std::uint8_t byte : bytes)
        value = value << 8 | byte;
    return value;
}

std::optional<SdpElement> SdpElements::next() {
    const auto header = take(1);
    if (!header)
        return {};
    const unsigned type = header->front() >> kSizeBits;
    const unsigned sizeIndex = header->front() & ((1U << kSizeBits) - 1);
    if (type >= std::size(kSizesOfTypes) || (kSizesOfTypes[type] >> sizeIndex & 1) == 0)
        return {};
    const auto size = takeSize(SdpType(type), sizeIndex);
    const auto value = size ? take(*size) : std::nullopt;
    return value ? std::optional(SdpElement{SdpType(type), *value}) : std::nullopt;
}

std::optional<std::span<const std::uint8_t>> SdpElements::take(std::uint64_t size) {
    if (size > mBytes.size())
        return {};
    const auto taken = mBytes.first(size);
    mBytes = mBytes.subspan(size);
    return taken;
}

std::optional<std::uint64_t> SdpElements::takeSize(SdpType type, unsigned sizeIndex) {
    if (type == SdpType::Nil)
        return 0;
    if (sizeIndex < kFirstToldSize)
        return 1U << sizeIndex;
    const auto told = take(1U << (sizeIndex - kFirstToldSize));
    return told ? std::optional(bigEndian(*told)) : std::nullopt;
}

} // namespace orbelantine::bluez
