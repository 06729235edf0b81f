#include "bluetooth/linux/DeviceTable.h"

namespace orbelantine {

// A handle is the opening's number times kCapacity plus the slot.

DriverApi::Handle DeviceTable::add(std::unique_ptr<DeviceSocket> socket) {
    const std::lock_guard lock(mAddMutex);
    for (std::size_t i = 0; i < kCapacity; ++i) {
        Slot& slot = mSlots[i];
        if (slot.used.load(std::memory_order_acquire))
            continue;
        slot.used = true;
        slot.socket = std::move(socket);
        // close() has already gone on to the next opening's number.
        const State opening = slot.state.load() >> kOpeningShift;
        slot.state.store((opening << kOpeningShift) | kOneLease, std::memory_order_release);
        return static_cast<DriverApi::Handle>(opening * kCapacity + i);
    }
    return DriverApi::kInvalidHandle;
}

DeviceTable::Lease DeviceTable::lease(DriverApi::Handle handle) {
    Slot* slot = slotOf(handle);
    if (!slot)
        return {};
    State state = slot->state.load(std::memory_order_acquire);
    while (isOpen(state, handle))
        if (slot->state.compare_exchange_weak(state, state + kOneLease))
            return Lease(slot);
    return {};
}

void DeviceTable::close(DriverApi::Handle handle) {
    Slot* slot = slotOf(handle);
    if (!slot)
        return;
    State state = slot->state.load(std::memory_order_acquire);
    while (isOpen(state, handle)) {
        if (!slot->state.compare_exchange_weak(state, state + (State{1} << kOpeningShift)))
            continue;
        slot->socket->shutDown();
        release(*slot);
        return;
    }
}

void DeviceTable::release(Slot& slot) {
    if ((slot.state.fetch_sub(kOneLease) & kLeases) != 1)
        return;
    slot.socket.reset();
    slot.used.store(false, std::memory_order_release);
}

DeviceTable::Slot* DeviceTable::slotOf(DriverApi::Handle handle) {
    return handle < 0 ? nullptr : &mSlots[static_cast<std::size_t>(handle) % kCapacity];
}

bool DeviceTable::isOpen(State state, DriverApi::Handle handle) {
    return (state & kLeases) != 0 &&
           state >> kOpeningShift == static_cast<State>(handle) / kCapacity;
}

} // namespace orbelantine
