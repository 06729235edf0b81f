#include "core/common/run/KernelEvent.h"

#include "core/common/errors/ErrorCode.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <optional>
#include <span>
#include <unordered_map>

namespace orbelantine::kernel_event {

namespace {

constexpr std::uint32_t kInfinite = 0xFFFFFFFF;
constexpr std::size_t kMaximumWaitObjects = 64;

struct Event {
    bool manualReset;
    bool signalled;
};

// A thread that waits. Who sets an event ends the waits that it satisfies there and then, so a
// reset that follows takes nothing from them.
struct Waiter {
    std::span<const Handle> events;
    bool all;
    std::optional<std::uint32_t> result{};
    std::condition_variable ended{};
};

// Every event of the process under one lock, so that a wait for all sees and takes them at once.
// A closed handle is found no more, and is never given out again.
class EventTable {
  public:
    Handle create(bool manualReset, bool signalled) {
        const std::lock_guard lock(mMutex);
        const auto handle = reinterpret_cast<Handle>(++mLastHandle);
        mEvents.emplace(handle, Event{manualReset, signalled});
        return handle;
    }

    void close(Handle handle) {
        const std::lock_guard lock(mMutex);
        mEvents.erase(handle);
    }

    void set(Handle handle) {
        const std::lock_guard lock(mMutex);
        if (Event* const event = find(handle)) {
            event->signalled = true;
            endWaits();
        }
    }

    void reset(Handle handle) {
        const std::lock_guard lock(mMutex);
        if (Event* const event = find(handle))
            event->signalled = false;
    }

    WaitResult wait(std::span<const Handle> events, bool all, std::uint32_t milliseconds) {
        if (events.empty() || events.size() > kMaximumWaitObjects)
            return {kWaitFailed, win32::kErrorInvalidParameter};
        std::unique_lock lock(mMutex);
        if (!std::ranges::all_of(events, [this](Handle event) { return find(event) != nullptr; }))
            return {kWaitFailed, win32::kErrorInvalidHandle};
        Waiter waiter{events, all};
        if (!satisfy(waiter) && milliseconds != 0)
            block(waiter, lock, milliseconds);
        return {waiter.result.value_or(kWaitTimeout), win32::kErrorSuccess};
    }

  private:
    Event* find(Handle handle) {
        const auto found = mEvents.find(handle);
        return found == mEvents.end() ? nullptr : &found->second;
    }

    bool signalled(Handle handle) {
        const Event* const event = find(handle);
        return event != nullptr && event->signalled;
    }

    void take(Handle handle) {
        Event* const event = find(handle);
        event->signalled = event->manualReset;
    }

    bool satisfy(Waiter& waiter) {
        const auto isSignalled = [this](Handle event) { return signalled(event); };
        if (waiter.all) {
            if (!std::ranges::all_of(waiter.events, isSignalled))
                return false;
            for (Handle event : waiter.events)
                take(event);
            waiter.result = 0;
            return true;
        }
        const auto first = std::ranges::find_if(waiter.events, isSignalled);
        if (first == waiter.events.end())
            return false;
        take(*first);
        waiter.result = static_cast<std::uint32_t>(first - waiter.events.begin());
        return true;
    }

    // The longest wait comes first.
    void endWaits() {
        for (Waiter* const waiter : mWaiters)
            if (!waiter->result && satisfy(*waiter))
                waiter->ended.notify_one();
    }

    void block(Waiter& waiter, std::unique_lock<std::mutex>& lock, std::uint32_t milliseconds) {
        const auto place = mWaiters.insert(mWaiters.end(), &waiter);
        const auto ended = [&waiter] { return waiter.result.has_value(); };
        if (milliseconds == kInfinite)
            waiter.ended.wait(lock, ended);
        else
            waiter.ended.wait_for(lock, std::chrono::milliseconds(milliseconds), ended);
        mWaiters.erase(place);
    }

    std::mutex mMutex;
    std::unordered_map<Handle, Event> mEvents;
    std::list<Waiter*> mWaiters;
    std::uintptr_t mLastHandle = 0;
};

EventTable& table() {
    // Never destroyed: threads may make and set events while the process ends.
    static EventTable& table = *new EventTable;
    return table;
}

} // namespace

Handle create(bool manualReset, bool signalled) {
    return table().create(manualReset, signalled);
}

void close(Handle event) {
    table().close(event);
}

void set(Handle event) {
    table().set(event);
}

void reset(Handle event) {
    table().reset(event);
}

WaitResult waitForOne(Handle event, std::uint32_t milliseconds) {
    return table().wait({&event, 1}, false, milliseconds);
}

WaitResult waitForMany(const Handle* events, std::uint32_t count, bool all,
                       std::uint32_t milliseconds) {
    return table().wait({events, count}, all, milliseconds);
}

} // namespace orbelantine::kernel_event
