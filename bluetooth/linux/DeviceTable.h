#pragma once

#include "bluetooth/linux/DeviceSocket.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace orbelantine {

/// Handles of open devices. A handle may be closed while other threads use it: they keep the socket
/// until they return, and a handle that was closed never reaches a device opened later. Leasing
/// takes no lock. Any thread may call.
class DeviceTable {
    struct Slot;

  public:
    /// The use of a device for the time of a call; false if the handle isn't open.
    class Lease {
      public:
        Lease() = default;

        explicit Lease(Slot* slot)
            : mSlot(slot) {}

        ~Lease() {
            if (mSlot)
                release(*mSlot);
        }

        Lease(Lease&& other) noexcept
            : mSlot(std::exchange(other.mSlot, nullptr)) {}

        Lease& operator=(Lease&&) = delete;

        explicit operator bool() const { return mSlot != nullptr; }

        DeviceSocket* operator->() const { return mSlot->socket.get(); }

      private:
        Slot* mSlot = nullptr;
    };

    /// kInvalidHandle when the table is full.
    [[nodiscard]] DriverApi::Handle add(std::unique_ptr<DeviceSocket> socket);
    [[nodiscard]] Lease lease(DriverApi::Handle handle);
    void close(DriverApi::Handle handle);

  private:
    static constexpr std::size_t kCapacity = 64;

    // high half: the opening's number | low half: leases, and one while open
    using State = std::uint64_t;
    static constexpr State kOneLease = 1;
    static constexpr State kLeases = 0xFFFFFFFF;
    static constexpr int kOpeningShift = 32;

    struct Slot {
        std::atomic<State> state = 0;
        std::atomic<bool> used = false;
        std::unique_ptr<DeviceSocket> socket;
    };

    static void release(Slot& slot);
    [[nodiscard]] Slot* slotOf(DriverApi::Handle handle);
    static bool isOpen(State state, DriverApi::Handle handle);

    std::mutex mAddMutex;
    std::array<Slot, kCapacity> mSlots;
};

} // namespace orbelantine
