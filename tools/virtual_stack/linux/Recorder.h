#pragma once

#include "tools/virtual_stack/linux/Value.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::stack {

/// One thing that happened: a method that a client called, by its name, or what became of it.
struct Event {
    /// "StartDiscovery", "RegisterAgent", "Pair"...; or "asked", "answered", "canceled", "refused",
    /// "paired", "power", "bus_lost".
    std::string what;
    /// Of the device or adapter; empty where there is none.
    std::string subject;
    /// Of "answered" the error, empty for consent; else what else there is to tell.
    std::string detail;
    /// The client on the bus.
    std::string client;
};

struct Agent {
    std::string client;
    std::string path;
    std::string capability;
};

struct Profile {
    /// Who has it, by its name on the bus.
    std::string sender;
    /// Its object; empty while there is none.
    std::string path;
    std::string uuid;
    Variants options;

    template <typename T>
    [[nodiscard]] T option(const std::string& name) const {
        return options.at(name).get<T>();
    }
};

/// What a test sees of the stack.
struct Seen {
    std::vector<Event> events;
    /// The default agent first.
    std::vector<Agent> agents;
    /// As they were set, one after the other.
    std::vector<Variants> filters;
    /// Clients whose discovery runs.
    std::vector<std::string> discoverers;
    /// As it was last registered.
    Profile profile;

    [[nodiscard]] std::size_t count(const std::string& what) const {
        return static_cast<std::size_t>(std::ranges::count(events, what, &Event::what));
    }

    /// The last such event.
    [[nodiscard]] std::optional<Event> last(const std::string& what) const {
        const auto place = std::find_if(events.rbegin(), events.rend(),
                                        [&what](const Event& event) { return event.what == what; });
        return place == events.rend() ? std::nullopt : std::optional(*place);
    }
};

/// Keeps what is seen, for whoever waits for it. Any thread may call.
class Recorder {
  public:
    /// Gets every event, on the stack's thread.
    using Observer = std::function<void(const Event&)>;

    explicit Recorder(Observer observer = nullptr)
        : mObserver(std::move(observer)) {}

    void add(const Event& event) {
        change([&event](Seen& seen) { seen.events.push_back(event); });
        if (mObserver)
            mObserver(event);
    }

    template <class Change>
    void change(Change change) {
        {
            const std::lock_guard lock(mMutex);
            change(mSeen);
        }
        mChanged.notify_all();
    }

    [[nodiscard]] Seen seen() const {
        const std::lock_guard lock(mMutex);
        return mSeen;
    }

    /// False if it doesn't come true in time.
    [[nodiscard]] bool wait(const std::function<bool(const Seen&)>& isSo,
                            std::chrono::milliseconds longest) const {
        std::unique_lock lock(mMutex);
        return mChanged.wait_for(lock, longest, [&] { return isSo(mSeen); });
    }

  private:
    const Observer mObserver;
    mutable std::mutex mMutex;
    mutable std::condition_variable mChanged;
    Seen mSeen;
};

} // namespace orbelantine::stack
