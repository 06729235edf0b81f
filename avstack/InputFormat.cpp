#include "avstack/InputFormat.h"

#include "core/common/config/KVStore.h"

namespace orbelantine {

namespace {

constexpr const char* kMouseType = "mouseType";
constexpr const char* kKeyboardType = "keyboardType";
constexpr const char* kTouchType = "touchType";
constexpr const char* kTypeFlags = "typeFlags";

} // namespace

InputFormat::InputFormat(std::uint32_t mouse, std::uint32_t keyboard, std::uint32_t touch,
                         std::uint32_t flags)
    : mouseType(mouse)
    , keyboardType(keyboard)
    , touchType(touch)
    , typeFlags(flags) {}

InputFormat::InputFormat(const KVStore& store) {
    // Reading a store writes its defaults, so it is done on a copy.
    KVStore values(store);
    mouseType = static_cast<std::uint32_t>(values.getIntAt(kMouseType));
    keyboardType = static_cast<std::uint32_t>(values.getIntAt(kKeyboardType));
    touchType = static_cast<std::uint32_t>(values.getIntAt(kTouchType));
    typeFlags = static_cast<std::uint32_t>(values.getIntAt(kTypeFlags));
}

KVStore InputFormat::getAsKVStore() const {
    KVStore store;
    store.setIntAt(kMouseType, static_cast<std::int32_t>(mouseType));
    store.setIntAt(kTouchType, static_cast<std::int32_t>(touchType));
    store.setIntAt(kTypeFlags, static_cast<std::int32_t>(typeFlags));
    store.setIntAt(kKeyboardType, static_cast<std::int32_t>(keyboardType));
    return store;
}

} // namespace orbelantine
