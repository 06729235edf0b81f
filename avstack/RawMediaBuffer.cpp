#include "avstack/RawMediaBuffer.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>

namespace orbelantine {

RawMediaBuffer::RawMediaBuffer(std::uint8_t type, std::uint32_t size, std::uint64_t timestamp)
    : RawMediaBuffer(type, size, timestamp, size > 0 ? new std::uint8_t[size]() : nullptr, true) {}

RawMediaBuffer::RawMediaBuffer(std::uint8_t type, std::uint32_t size, std::uint64_t timestamp,
                               std::uint8_t* data, bool ownsData)
    : mType(type)
    , mSize(size)
    , mTimestamp(timestamp)
    , mData(data)
    , mOwnsData(ownsData) {}

RawMediaBuffer::~RawMediaBuffer() {
    if (mOwnsData)
        delete[] mData;
}

boost::shared_ptr<IMediaBuffer> RawMediaBuffer::copy(std::uint8_t type, std::uint64_t timestamp) {
    const auto result =
        boost::make_shared<RawMediaBuffer>(typeOfCopy(type), mSize, timestampOfCopy(timestamp));
    std::copy_n(mData, mSize, result->mData);
    return result;
}

boost::shared_ptr<IMediaBuffer> RawMediaBuffer::soft_copy(std::uint8_t type,
                                                          std::uint64_t timestamp) {
    const auto result = boost::make_shared<RawMediaBuffer>(
        typeOfCopy(type), mSize, timestampOfCopy(timestamp), mData, mOwnsData);
    mOwnsData = false;
    return result;
}

std::uint8_t RawMediaBuffer::typeOfCopy(std::uint8_t type) const {
    return type == kKeepType ? mType : type;
}

std::uint64_t RawMediaBuffer::timestampOfCopy(std::uint64_t timestamp) const {
    const std::uint64_t chosen = timestamp == kKeepTimestamp ? mTimestamp : timestamp;
    // The two highest values both stand for "no timestamp yet".
    return chosen >= kKeepTimestamp - 1 ? getNowTimestamp() : chosen;
}

} // namespace orbelantine
