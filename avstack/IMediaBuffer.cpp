#include "avstack/IMediaBuffer.h"

#include <chrono>

namespace orbelantine {

boost::shared_ptr<IMediaBuffer> IMediaBuffer::copy(std::uint8_t, std::uint64_t) {
    return {};
}

boost::shared_ptr<IMediaBuffer> IMediaBuffer::soft_copy(std::uint8_t, std::uint64_t) {
    return {};
}

void* IMediaBuffer::map() {
    return nullptr;
}

void* IMediaBuffer::map(std::uint32_t) {
    return nullptr;
}

void IMediaBuffer::unmap() {}

std::uint8_t IMediaBuffer::getType() {
    return 0;
}

std::uint32_t IMediaBuffer::getWidth() {
    return ~std::uint32_t{0};
}

std::uint32_t IMediaBuffer::getHeight() {
    return ~std::uint32_t{0};
}

std::uint32_t IMediaBuffer::getStride(std::uint32_t) {
    return ~std::uint32_t{0};
}

std::uint32_t IMediaBuffer::getSize() {
    return ~std::uint32_t{0};
}

std::uint64_t IMediaBuffer::getTimestamp() {
    return ~std::uint64_t{0};
}

void IMediaBuffer::setTimestamp(std::uint64_t) {}

void* IMediaBuffer::getRawBuffer() {
    return nullptr;
}

boost::shared_ptr<void> IMediaBuffer::getRawMediaContext() {
    return {};
}

std::uint64_t IMediaBuffer::getNowTimestamp() {
    using Clock = std::chrono::steady_clock;
    static const Clock::time_point start = Clock::now();
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    return static_cast<std::uint64_t>(elapsed.count());
}

} // namespace orbelantine
