// Signals of every callback family for the host's tests, fired by native code.

#include "binding/callbacks/AudioCallbackFamilies.h"
#include "binding/callbacks/BluetoothCallbackFamilies.h"
#include "binding/callbacks/InputCallbackFamilies.h"

#include <boost/asio/ip/address_v4.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <cstring>
#include <iterator>
#include <limits>

namespace {

using orbelantine::AudioState;
using orbelantine::IInputContext;

int nestedCalls = 0;

std::string narrowSample(int i) {
    return "gr\xC3\xBCn \xF0\x9F\x93\xB1" + std::to_string(i);
}

std::wstring wideSample(int i) {
    return L"gr\u00FCn \U0001F4F1" + std::to_wstring(i);
}

// The value that a native firing gives as argument number i; FamilyValues.cs knows the same ones.
template <class T>
struct Sample;

#define ORB_SAMPLE(TYPE, ...)                                                                      \
    template <>                                                                                    \
    struct Sample<TYPE> {                                                                          \
        static TYPE value([[maybe_unused]] int i) { return __VA_ARGS__; }                          \
    };

ORB_SAMPLE(bool, i % 2 == 0)
ORB_SAMPLE(std::int32_t, -100 - i)
ORB_SAMPLE(std::uint32_t, 4000000000U + static_cast<std::uint32_t>(i))
ORB_SAMPLE(std::int64_t, std::numeric_limits<std::int64_t>::min() + i)
ORB_SAMPLE(std::uint64_t, std::numeric_limits<std::uint64_t>::max() - static_cast<unsigned>(i))
ORB_SAMPLE(double, 0.1 + i)
ORB_SAMPLE(std::string, narrowSample(i))
ORB_SAMPLE(std::wstring, wideSample(i))
ORB_SAMPLE(boost::system::error_code, {5 + i, boost::system::generic_category()})
ORB_SAMPLE(boost::asio::ip::address,
           boost::asio::ip::make_address_v4("10.0.0." + std::to_string(i)))
ORB_SAMPLE(vectorUint8, {0, 255, static_cast<std::uint8_t>(i)})
ORB_SAMPLE(stdMapStringString, {{"", narrowSample(i)}, {"key", ""}})
ORB_SAMPLE(stdMapStringWstring, {{"", wideSample(i)}, {"key", L""}})
ORB_SAMPLE(stdMapUintWstring, {{0, wideSample(i)}, {4000000000U, L""}})
ORB_SAMPLE(stdMapWstringWstring, {{L"", wideSample(i)}, {L"key", L""}})
ORB_SAMPLE(IInputContext::eMouseButton, IInputContext::MouseButtonRight)
ORB_SAMPLE(IInputContext::ePointerType, IInputContext::PointerTouch)
ORB_SAMPLE(AudioState, orbelantine::NoAudioOut)

sharedPeer peerSample(int i) {
    return boost::make_shared<orbelantine::BluetoothPeer>(
        orbelantine::CMacAddress(std::uint64_t{0xA1B2C3D4E5F6}), wideSample(i),
        static_cast<std::uint32_t>(0x200 + i), true);
}

ORB_SAMPLE(sharedPeer, peerSample(i))
ORB_SAMPLE(vectorPeer, {peerSample(i), peerSample(i + 1)})

template <class... Arguments>
struct Sample<boost::function<void(Arguments...)>> {
    static boost::function<void(Arguments...)> value(int) {
        return [](Arguments...) { ++nestedCalls; };
    }
};

template <class Signature>
struct Firing;

template <class Result, class... Arguments>
struct Firing<Result(Arguments...)> {
    using Signal = boost::signals2::signal<Result(Arguments...)>;

    static void* make() { return new Signal; }

    static void fire(void* signal) { fireWith(signal, std::index_sequence_for<Arguments...>()); }

  private:
    template <std::size_t... I>
    static void fireWith(void* signal, std::index_sequence<I...>) {
        const orbelantine::binding::fire<Result(Arguments...)> fire(*static_cast<Signal*>(signal));
        fire(Sample<std::remove_cvref_t<Arguments>>::value(static_cast<int>(I))...);
    }
};

struct Family {
    const char* name;
    void* (*make)();
    void (*fire)(void*);
};

#define ORB_CALLBACK_FAMILY(NAME, RESULT, COUNT, TYPES)                                            \
    {#NAME, &Firing<RESULT TYPES>::make, &Firing<RESULT TYPES>::fire},

constexpr Family kFamilies[] = {
#include "binding/callbacks/CallbackTableAudio.inc"
#include "binding/callbacks/CallbackTableBluetooth.inc"
#include "binding/callbacks/CallbackTableCommon.inc"
#include "binding/callbacks/CallbackTableInput.inc"
};

const Family* find(const char* name) {
    for (const Family& family : kFamilies)
        if (std::strcmp(family.name, name) == 0)
            return &family;
    return nullptr;
}

} // namespace

#define ORB_TEST_EXPORT extern "C" __attribute__((visibility("default")))

/// A new signal of a family, to be deleted by the library's own export; null if there is none.
ORB_TEST_EXPORT void* orbTestNewSignal(const char* name) {
    const Family* family = find(name);
    return family ? family->make() : nullptr;
}

ORB_TEST_EXPORT void orbTestFire(const char* name, void* signal) {
    find(name)->fire(signal);
}

/// How often the functions that were arguments of a firing have been called.
ORB_TEST_EXPORT int orbTestNestedCalls() {
    return nestedCalls;
}

ORB_TEST_EXPORT void* orbTestNewAddress(int number) {
    return new boost::asio::ip::address(Sample<boost::asio::ip::address>::value(number));
}

/// The last byte of an IPv4 address, which is deleted.
ORB_TEST_EXPORT int orbTestTakeAddress(void* handle) {
    const auto* address = static_cast<boost::asio::ip::address*>(handle);
    const int number = address->to_v4().to_bytes()[3];
    delete address;
    return number;
}
