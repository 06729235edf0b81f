#include "bluetooth/BluetoothPeer.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <iterator>
#include <ratio>

namespace orbelantine {

namespace {

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

constexpr std::int64_t kMarkedStale = 0;
constexpr std::int64_t kStaleAfter = Ticks(std::chrono::seconds(30)).count();

constexpr std::uint32_t kMajorClassMask = 0x1F00;
constexpr std::uint32_t kMajorClassShift = 8;
constexpr int kUnknownType = 0;
// By major class: miscellaneous, computer, phone, LAN access point, audio/video, peripheral,
// imaging, wearable, toy, health.
constexpr int kTypes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};

std::wstring widened(const std::string& text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (const char c : text)
        wide.push_back(static_cast<unsigned char>(c));
    return wide;
}

} // namespace

BluetoothPeer::BluetoothPeer(const std::string& name, IClock& clock)
    : BluetoothPeer(CMacAddress(), widened(name), 0, false, clock) {}

BluetoothPeer::BluetoothPeer(const std::wstring& name, IClock& clock)
    : BluetoothPeer(CMacAddress(), name, 0, false, clock) {}

BluetoothPeer::BluetoothPeer(const CMacAddress& address, IClock& clock)
    : BluetoothPeer(address, std::wstring(), 0, false, clock) {}

BluetoothPeer::BluetoothPeer(const CMacAddress& address, const std::wstring& name,
                             std::uint32_t deviceClass, bool paired, IClock& clock)
    : mAddress(address)
    , mDetails(boost::make_shared<const Details>(Details{name, deviceClass, paired}))
    , mLastSeen(kMarkedStale)
    , mClock(clock) {
    touch();
}

BluetoothPeer::BluetoothPeer(const BluetoothPeer& other)
    : mAddress(other.mAddress)
    , mDetails(other.mDetails.load())
    , mLastSeen(other.mLastSeen.load())
    , mClock(other.mClock) {}

CMacAddress BluetoothPeer::address() const {
    return mAddress;
}

std::wstring BluetoothPeer::name() const {
    return mDetails.load()->name;
}

std::uint32_t BluetoothPeer::deviceClass() const {
    return mDetails.load()->deviceClass;
}

int BluetoothPeer::deviceType() const {
    const std::uint32_t major = (deviceClass() & kMajorClassMask) >> kMajorClassShift;
    return major < std::size(kTypes) ? kTypes[major] : kUnknownType;
}

bool BluetoothPeer::isPaired() const {
    return mDetails.load()->paired;
}

void BluetoothPeer::update(const std::wstring& name, std::uint32_t deviceClass, bool paired) {
    mDetails.store(boost::make_shared<const Details>(Details{name, deviceClass, paired}));
}

void BluetoothPeer::touch() {
    mLastSeen = ticks();
}

void BluetoothPeer::markStale() {
    mLastSeen = kMarkedStale;
}

// The mark counts by itself: the tick clock may have begun less than 30 seconds ago.
bool BluetoothPeer::isStale() const {
    const std::int64_t lastSeen = mLastSeen;
    return lastSeen == kMarkedStale || ticks() - lastSeen >= kStaleAfter;
}

bool BluetoothPeer::operator==(const BluetoothPeer& other) const {
    return mAddress == other.mAddress && *mDetails.load() == *other.mDetails.load();
}

std::int64_t BluetoothPeer::ticks() const {
    return std::chrono::duration_cast<Ticks>(mClock.now().time_since_epoch()).count();
}

} // namespace orbelantine
