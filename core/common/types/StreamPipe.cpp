#include "core/common/types/StreamPipe.h"

#include "core/common/log/Log.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <iterator>

namespace orbelantine {

void StreamPipe::write(const std::uint8_t* data, std::size_t size) {
    const std::lock_guard lock(mMutex);
    mChunks.push_back(boost::make_shared<std::vector<std::uint8_t>>(data, data + size));
    mEvent.set();
}

std::size_t StreamPipe::size() const {
    const std::lock_guard lock(mMutex);
    std::size_t total = 0;
    for (const Chunk& chunk : mChunks)
        total += unread(chunk).size();
    return total;
}

void StreamPipe::clear() {
    const std::lock_guard lock(mMutex);
    mChunks.clear();
    mReadOffset = 0;
}

bool StreamPipe::read(std::uint8_t* buffer, std::size_t size) {
    const std::lock_guard lock(mMutex);
    const std::size_t copied = take(buffer, size);
    if (copied == size)
        return true;
    ORB_LOG(kLogError, "%s() Not enough data - %d bytes copied, %d bytes requested",
            static_cast<int>(copied), static_cast<int>(size));
    return false;
}

bool StreamPipe::peek(std::uint8_t* buffer, std::size_t size, std::size_t offset) const {
    const std::lock_guard lock(mMutex);
    const std::size_t available = this->size();
    if (size == 0 || size > available) {
        ORB_LOG(kLogError, "%s() Invalid size parameter - %d bytes available, %d bytes requested",
                static_cast<int>(available), static_cast<int>(size));
        return false;
    }
    const std::size_t copied = copyOut(buffer, size, offset);
    if (copied == size)
        return true;
    ORB_LOG(kLogDebug, "%s() Not enough data - %d bytes copied, %d bytes requested",
            static_cast<int>(copied), static_cast<int>(size));
    return false;
}

bool StreamPipe::remove(std::size_t size) {
    const std::lock_guard lock(mMutex);
    const std::size_t available = this->size();
    if (size == 0 || size > available) {
        ORB_LOG(kLogError, "%s() Invalid size - %d bytes available, %d bytes requested",
                static_cast<int>(available), static_cast<int>(size));
        return false;
    }
    const std::size_t removed = take(nullptr, size);
    if (removed == size)
        return true;
    ORB_LOG(kLogError, "%s() Not enough data - %d bytes removed, %d bytes requested",
            static_cast<int>(removed), static_cast<int>(size));
    return false;
}

std::ptrdiff_t StreamPipe::find(const std::uint8_t* pattern, std::size_t size,
                                std::size_t start) const {
    const std::lock_guard lock(mMutex);
    const std::size_t available = this->size();
    if (size == 0 || size > available) {
        ORB_LOG(kLogDebug, "%s() Invalid size - %d bytes available, %d bytes requested",
                static_cast<int>(available), static_cast<int>(size));
        return kNotFound;
    }
    std::vector<std::uint8_t> rest(size - 1);
    for (std::ptrdiff_t match = findByte(*pattern, start); match != kNotFound;
         match = findByte(*pattern, start)) {
        start = static_cast<std::size_t>(match) + 1;
        if (rest.empty())
            return match;
        if (!peek(rest.data(), rest.size(), start)) {
            ORB_LOG(kLogDebug, "%s() Unable to peek data - offset %d, size %d",
                    static_cast<int>(start), static_cast<int>(rest.size()));
            return kNotFound;
        }
        if (std::equal(rest.begin(), rest.end(), pattern + 1))
            return match;
    }
    return kNotFound;
}

// Takes what there is of `size` bytes; to nowhere when the target is null.
std::size_t StreamPipe::take(std::uint8_t* target, std::size_t size) {
    std::size_t taken = 0;
    while (taken < size && !mChunks.empty())
        taken += takeFromOldest(target ? target + taken : nullptr, size - taken);
    return taken;
}

std::size_t StreamPipe::takeFromOldest(std::uint8_t* target, std::size_t size) {
    const std::span<const std::uint8_t> bytes = unread(mChunks.front());
    const std::size_t taken = std::min(size, bytes.size());
    if (target)
        std::copy_n(bytes.begin(), taken, target);
    if (taken < bytes.size()) {
        mReadOffset += taken;
    } else {
        mChunks.pop_front();
        mReadOffset = 0;
    }
    return taken;
}

std::size_t StreamPipe::copyOut(std::uint8_t* target, std::size_t size, std::size_t offset) const {
    std::size_t copied = 0;
    for (const Chunk& chunk : mChunks) {
        const std::span<const std::uint8_t> bytes = unread(chunk);
        const std::size_t skipped = std::min(offset, bytes.size());
        const std::size_t count = std::min(bytes.size() - skipped, size - copied);
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(skipped), count, target + copied);
        offset -= skipped;
        copied += count;
        if (copied == size)
            break;
    }
    return copied;
}

std::ptrdiff_t StreamPipe::findByte(std::uint8_t byte, std::size_t start) const {
    std::ptrdiff_t position = 0;
    for (const Chunk& chunk : mChunks) {
        const std::span<const std::uint8_t> bytes = unread(chunk);
        const std::size_t skipped = std::min(start, bytes.size());
        const auto found =
            std::find(bytes.begin() + static_cast<std::ptrdiff_t>(skipped), bytes.end(), byte);
        if (found != bytes.end())
            return position + (found - bytes.begin());
        start -= skipped;
        position += std::ssize(bytes);
    }
    return kNotFound;
}

std::span<const std::uint8_t> StreamPipe::unread(const Chunk& chunk) const {
    const bool oldest = chunk == mChunks.front();
    return std::span<const std::uint8_t>(*chunk).subspan(oldest ? mReadOffset : 0);
}

} // namespace orbelantine
