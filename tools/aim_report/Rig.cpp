#include "tools/aim_report/Rig.h"

#include "core/common/config/KVStore.h"
#include "input/sources/IMouseSource.h"
#include "tools/aim_report/makeSource.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <stdexcept>
#include <thread>

namespace orbelantine::aim {

namespace {

using namespace std::chrono_literals;

constexpr Size kPhone = {1080, 2340};
constexpr int kPhonePixelsPerPixel = 2;
constexpr double kScale = 2;
/// Between two gestures. After such a pause the phone and the source begin to measure speed anew.
constexpr IClock::Duration kRest = 1s;
constexpr IClock::Duration kStep = 16ms;
constexpr IClock::Duration kPause = 45ms;
constexpr int kFinger = 1;

phone::Screen screenOf(const Setup& setup) {
    const bool upright = setup.rotation % 2 == 1;
    return {.width = upright ? kPhone.width : kPhone.height,
            .height = upright ? kPhone.height : kPhone.width,
            .scale = setup.scaled ? kScale : 1,
            .rotation = setup.rotation};
}

KVStore configurationOf(const Setup& setup) {
    KVStore configuration;
    configuration.setStringAt("hint", setup.scaled ? "ios" : "android");
    configuration.setBoolAt("apple", setup.scaled);
    return configuration;
}

/// The source connects to the surface on a thread of its own.
void awaitConnection(const Surface& surface) {
    const auto giveUp = std::chrono::steady_clock::now() + 10s;
    while (surface.onRotationChanged.empty() || surface.onLogicalDimensionsChanged.empty()) {
        if (std::chrono::steady_clock::now() > giveUp)
            throw std::runtime_error("the mouse source does not start");
        std::this_thread::yield();
    }
}

} // namespace

double distance(Point a, Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

std::string nameOf(const Setup& setup) {
    return std::to_string(setup.rotation) + (setup.scaled ? ", scaled" : ", unscaled");
}

Rig::Rig(const Setup& setup)
    : mScreen(screenOf(setup))
    , mSurfaceSize{mScreen.width / kPhonePixelsPerPixel, mScreen.height / kPhonePixelsPerPixel}
    , mPhone(mScreen, mLog,
             setup.scaled ? phone::Acceleration::Curve : phone::Acceleration::Android, mClock)
    , mSurface(boost::make_shared<Surface>(mSurfaceSize.width, mSurfaceSize.height))
    , mLink(boost::make_shared<Link>(mPhone, mClock))
    , mSource(makeSource(configurationOf(setup), mClock)) {
    mSource->registerTarget(mLink);
    mSource->start(mSurface);
    awaitConnection(*mSurface);
    tellScreen();
}

Rig::~Rig() = default;

void Rig::tellScreen() {
    mSurface->onRotationChanged(mScreen.rotation);
    mSurface->onLogicalDimensionsChanged(mScreen.width, mScreen.height, mScreen.scale, 0);
    awaitSource();
}

void Rig::awaitSource() {
    mSource->mouseRButton(false, 0, 0, false);
    mLink->waitForReleases(++mWaits);
}

Rig::Landing Rig::click(Point at) {
    mClock.sleepFor(kRest);
    mSource->mouseLButton(true, at.x, at.y, 0, false);
    mSource->mouseLButton(false, at.x, at.y, 0, false);
    awaitSource();
    return landing();
}

Rig::Landing Rig::drag(std::span<const Point> way, Pace pace) {
    const IClock::Duration pause = pace == Pace::Paced ? kPause : 0ms;
    mClock.sleepFor(kRest);
    mSource->touch(true, way.front().x, way.front().y, kFinger, false);
    awaitSource();
    double path = 0;
    IClock::TimePoint time = mClock.now();
    IClock::TimePoint raisable = time + pause;
    for (const Point& place : way.subspan(1)) {
        mClock.sleepUntil(time += kStep);
        const bool last = &place == &way.back();
        if (!last && mClock.now() < raisable)
            continue;
        mClock.sleepUntil(raisable);
        raisable = mClock.now() + pause;
        mSource->touchMove(place.x, place.y, kFinger);
        awaitSource();
        path = std::max(path, distance(mPhone.cursor(), onPhone(place)));
    }
    mSource->touch(false, way.back().x, way.back().y, kFinger, false);
    awaitSource();
    Landing landed = landing();
    landed.path = path;
    return landed;
}

Rig::Landing Rig::landing() const {
    return {mLink->pressed(), mLink->legs(), mLink->released(), 0};
}

Point Rig::onPhone(Point place) const {
    return {place.x * mScreen.width / mSurfaceSize.width,
            place.y * mScreen.height / mSurfaceSize.height};
}

} // namespace orbelantine::aim
