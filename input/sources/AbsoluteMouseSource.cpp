#include "input/sources/AbsoluteMouseSource.h"

#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputMediaBufferTouch.h"
#include "avstack/IMediaElement.h"
#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "input/context/IInputContext.h"
#include "input/relative/RelativeCursor.h"

#include <boost/endian/conversion.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>

namespace orbelantine {

ORB_OSAL_REGISTER(IMouseSource, AbsoluteMouseSource, "AbsoluteMouseSource");

namespace {

using Mouse = IInputMediaBufferMouse;
using Touch = IInputMediaBufferTouch;

constexpr std::int32_t kFarEdge = 65535;

enum PositionType : std::uint8_t {
    kMove = Mouse::Move,
    kUp = Mouse::LeftUp,
    kDown = Mouse::LeftDown,
};

static_assert(+kMove == +Touch::Move && +kUp == +Touch::Up && +kDown == +Touch::Down);

/// The contract is a product of 32 bits, which wraps beyond 32768 pixels.
std::int32_t scaled(std::int32_t pixels, std::int32_t size) {
    const auto product = static_cast<std::uint32_t>(pixels) * std::uint32_t{kFarEdge};
    return static_cast<std::int32_t>(product) / size;
}

const char* directionName(bool down) {
    return down ? "down" : "up";
}

} // namespace

void AbsoluteMouseSource::registerTarget(const boost::shared_ptr<IMediaElement>& target) {
    ORB_LOG(kLogDebug, "%s() target=0x%p", static_cast<void*>(target.get()));
    mTarget = target;
}

void AbsoluteMouseSource::start(const boost::shared_ptr<IInputContext>& context) {
    ORB_LOG(kLogDebug, "%s() context=0x%p", static_cast<void*>(context.get()));
    mContext = context;
}

void AbsoluteMouseSource::stop() {}

bool AbsoluteMouseSource::isAbsolute() {
    return true;
}

void AbsoluteMouseSource::killFocus() {}

void AbsoluteMouseSource::mouseMove(std::int32_t x, std::int32_t y, std::int32_t id) {
    move(x, y, id);
}

void AbsoluteMouseSource::mouseLButton(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                                       bool reconnect) {
    leftClick(down, x, y, id, reconnect);
}

void AbsoluteMouseSource::mouseRButton(bool, std::int32_t, std::int32_t, bool) {}

void AbsoluteMouseSource::touchMove(std::int32_t x, std::int32_t y, std::int32_t id) {
    move(x, y, id);
}

void AbsoluteMouseSource::touch(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                                bool reconnect) {
    leftClick(down, x, y, id, reconnect);
}

void AbsoluteMouseSource::rawMouseMove(std::int32_t, std::int32_t) {}

void AbsoluteMouseSource::mouseWheel(bool up, std::int32_t, std::int32_t, std::int32_t amount) {
    // The relative source names the directions the other way round; the amount is swapped once.
    const Mouse::EventData event{.x = 0,
                                 .y = boost::endian::big_to_native(amount),
                                 .type = up ? Mouse::WheelNonPositive : Mouse::WheelPositive,
                                 .maxX = 0,
                                 .maxY = 0};
    send(boost::make_shared<Mouse>(event, true, IMediaBuffer::getNowTimestamp()));
}

void AbsoluteMouseSource::move(std::int32_t x, std::int32_t y, std::int32_t id) {
    normalizeMouseCoordinates(x, y);
    sendPosition(x, y, id, kMove);
}

void AbsoluteMouseSource::leftClick(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                                    bool) {
    countPress(down);
    ORB_LOG(kLogInfo, "%s() Before normalizing: %s (%d, %d)", directionName(down), x, y);
    normalizeMouseCoordinates(x, y);
    ORB_LOG(kLogInfo, "%s() After normalizing: %s (%d, %d)", directionName(down), x, y);
    sendPosition(x, y, id, down ? kDown : kUp);
}

/// The count may become negative by an up without a down; it is not brought back.
void AbsoluteMouseSource::countPress(bool down) {
    if (!down) {
        if (mPressCount-- == 1)
            mContext->releaseCaptureMouseExclusively();
    } else if (mPressCount == 0) {
        mPressCount = 1;
        mContext->setCaptureMouseExclusively();
    }
}

void AbsoluteMouseSource::normalizeMouseCoordinates(std::int32_t& x, std::int32_t& y) {
    IInputContext::Rect rect{};
    mContext->getInputSurfaceRectWithinScreen(rect);
    const CursorExtent extent = extentOf(rect);
    const std::int32_t width = std::max(extent.width, 0);
    const std::int32_t height = std::max(extent.height, 0);
    x = std::clamp(x, 0, width);
    y = std::clamp(y, 0, height);
    // A surface without area has no scale: the position goes out only clamped.
    if (width == 0 || height == 0)
        return;
    const std::int32_t nx = scaled(x, width);
    const std::int32_t ny = scaled(y, height);
    switch (mOrientationAngle) {
    case 0:
        x = nx;
        y = ny;
        break;
    case 90:
        x = kFarEdge - ny;
        y = nx;
        break;
    case 180:
        x = kFarEdge - nx;
        y = kFarEdge - ny;
        break;
    case 270:
        x = ny;
        y = kFarEdge - nx;
        break;
    default:
        ORB_LOG(kLogError, "%s: Cannot get orientation angle. Was RMI connection established");
    }
}

/// The integers are in host order although the buffers say otherwise, which consumers rely on.
void AbsoluteMouseSource::sendPosition(std::int32_t x, std::int32_t y, std::int32_t id,
                                       std::uint8_t type) {
    const std::uint64_t now = IMediaBuffer::getNowTimestamp();
    if (id == 0) {
        const Mouse::EventData event{.x = x, .y = y, .type = type, .maxX = 0, .maxY = 0};
        send(boost::make_shared<Mouse>(event, true, now));
    } else {
        const auto contact = static_cast<std::uint8_t>(id);
        const Touch::EventData event{.id = contact, .x = x, .y = y, .type = type};
        send(boost::make_shared<Touch>(event, true, now));
    }
}

void AbsoluteMouseSource::send(const boost::shared_ptr<IMediaBuffer>& buffer) {
    if (mTarget)
        mTarget->onFrame(buffer);
}

} // namespace orbelantine
