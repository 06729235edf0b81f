#include "bluetooth/radio/AuthenticationListener.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <map>
#include <mutex>
#include <utility>

namespace orbelantine {

struct AuthenticationListener::Entry {
    const Handler handler;
    // Held through a call of the handler.
    std::recursive_mutex mutex;
    bool gone = false;

    explicit Entry(Handler called)
        : handler(std::move(called)) {}
};

struct AuthenticationListener::Table {
    std::mutex mutex;
    std::map<std::uintptr_t, boost::shared_ptr<Entry>> entries;
    std::uintptr_t last = 0;
};

AuthenticationListener::Table& AuthenticationListener::table() {
    // Requests may come while the process ends.
    static Table& instance = *new Table;
    return instance;
}

AuthenticationListener::AuthenticationListener(Handler handler)
    : mEntry(boost::make_shared<Entry>(std::move(handler))) {
    const std::lock_guard lock(table().mutex);
    mNumber = ++table().last;
    table().entries[mNumber] = mEntry;
}

AuthenticationListener::~AuthenticationListener() {
    {
        const std::lock_guard lock(table().mutex);
        table().entries.erase(mNumber);
    }
    const std::lock_guard lock(mEntry->mutex);
    mEntry->gone = true;
}

void* AuthenticationListener::context() const {
    return reinterpret_cast<void*>(mNumber);
}

BluetoothApi::Bool AuthenticationListener::onRequest(void* context, Params* params) {
    boost::shared_ptr<Entry> entry;
    {
        const std::lock_guard lock(table().mutex);
        const auto found = table().entries.find(reinterpret_cast<std::uintptr_t>(context));
        if (found != table().entries.end())
            entry = found->second;
    }
    if (!entry)
        return 1;
    const std::lock_guard lock(entry->mutex);
    if (!entry->gone)
        entry->handler(*params);
    return 1;
}

} // namespace orbelantine
