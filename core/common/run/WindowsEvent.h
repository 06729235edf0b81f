#pragma once

#include "core/common/run/KernelEvent.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>
#include <functional>
#include <vector>

namespace orbelantine {

/// A handle on an event of the system. Copies share it; the last one closes it. Any thread may use
/// a copy of its own, and several threads may set, reset and wait on one.
///
/// Timeouts are in milliseconds: 0 only looks, kInfinite never ends. An automatic event is reset by
/// the one wait that it ends, a manual one by reset().
class WindowsEvent {
  public:
    static constexpr std::uint32_t kInfinite = 0xFFFFFFFF;
    /// What waitAny returns for none.
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    WindowsEvent(bool manualReset, bool signalled);
    WindowsEvent(const WindowsEvent& other);
    WindowsEvent& operator=(const WindowsEvent& other);
    virtual ~WindowsEvent();

    void set();
    void reset();
    /// True when the event was signalled in time.
    [[nodiscard]] bool wait(std::uint32_t timeout);

    /// Lives as long as the last copy.
    [[nodiscard]] kernel_event::Handle handle() const { return mHandle; }

    /// Waits on up to 64 events until all are signalled at once; until then none is taken. False,
    /// and an error in the log, for a time-out or a failure.
    [[nodiscard]] static bool waitAll(const std::vector<WindowsEvent>& events,
                                      std::uint32_t timeout) {
        return waitAll(handlesOf(events, std::identity()), timeout);
    }

    /// The same on the events held by records.
    template <class Record>
    [[nodiscard]] static bool waitAll(const std::vector<Record>& records,
                                      WindowsEvent Record::*event, std::uint32_t timeout) {
        return waitAll(handlesOf(records, event), timeout);
    }

    /// Waits on up to 64 events until one is signalled. Its index, the lowest where there are
    /// several; kNone, and an error in the log, for a time-out or a failure.
    [[nodiscard]] static std::uint32_t waitAny(const std::vector<WindowsEvent>& events,
                                               std::uint32_t timeout) {
        return waitAny(handlesOf(events, std::identity()), timeout);
    }

    /// The same on the events held by records.
    template <class Record>
    [[nodiscard]] static std::uint32_t waitAny(const std::vector<Record>& records,
                                               WindowsEvent Record::*event, std::uint32_t timeout) {
        return waitAny(handlesOf(records, event), timeout);
    }

  private:
    struct RefCount;
    using Handles = std::vector<kernel_event::Handle>;

    template <class Element, class EventOf>
    static Handles handlesOf(const std::vector<Element>& elements, EventOf eventOf) {
        Handles handles;
        handles.reserve(elements.size());
        for (const Element& element : elements)
            handles.push_back(std::invoke(eventOf, element).mHandle);
        return handles;
    }

    static bool waitAll(const Handles& handles, std::uint32_t timeout);
    static std::uint32_t waitAny(const Handles& handles, std::uint32_t timeout);
    void swap(WindowsEvent& other) noexcept;

    kernel_event::Handle mHandle;
    boost::shared_ptr<RefCount> mRefCount;
};

} // namespace orbelantine
