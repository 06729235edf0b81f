#pragma once

#include <cstdint>

namespace orbelantine {

class KVStore;

/// Which devices an input source serves.
struct InputFormat {
    /// The kinds of device that have a descriptor of their own.
    enum DeviceType : std::int32_t { Mouse = 0, Keyboard = 1, Touch = 2 };

    InputFormat() = default;
    explicit InputFormat(std::uint32_t mouse, std::uint32_t keyboard = 2, std::uint32_t touch = 0,
                         std::uint32_t flags = 0);
    /// From the entries that getAsKVStore() writes; a missing one counts as 0.
    explicit InputFormat(const KVStore& store);

    /// Integers under "mouseType", "touchType", "typeFlags" and "keyboardType".
    [[nodiscard]] KVStore getAsKVStore() const;

    /// 0: no mouse source; otherwise one is made as typeFlags says.
    std::uint32_t mouseType = 0;
    /// Carried only.
    std::uint32_t keyboardType = 0;
    /// 0: pointer events are ignored; 2: all pass; otherwise primary pointers pass.
    std::uint32_t touchType = 0;
    /// Bit 0: absolute mouse, and keys as characters where they map to one. Bit 1: relative mouse
    /// where the HID device reports type 2.
    std::uint32_t typeFlags = 0;
};

} // namespace orbelantine
