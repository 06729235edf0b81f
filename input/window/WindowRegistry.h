#pragma once

#include "input/window/WindowApi.h"

#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/smart_ptr/weak_ptr.hpp>

#include <map>
#include <mutex>
#include <utility>

namespace orbelantine {

class WindowsHwndInputContext;

/// The windows that are input surfaces, and who takes their messages. Any thread may call.
class WindowRegistry {
  public:
    struct Entry {
        boost::weak_ptr<WindowsHwndInputContext> context;
        /// Takes the messages that come when the context is already ending.
        WindowApi::Procedure previous = 0;
    };

    /// False if the window has an entry.
    bool add(WindowApi& api, WindowApi::Handle window, const Entry& entry);
    void remove(WindowApi& api, WindowApi::Handle window);
    /// An entry without anything where there is none.
    [[nodiscard]] Entry find(WindowApi& api, WindowApi::Handle window);

    /// The process's. It is never destroyed: messages may come at any time.
    [[nodiscard]] static WindowRegistry& instance();

  private:
    using Key = std::pair<WindowApi*, WindowApi::Handle>;

    std::mutex mMutex;
    std::map<Key, Entry> mEntries;
};

} // namespace orbelantine
