#include "input/window/WindowRegistry.h"

#include "input/window/WindowsHwndInputContext.h"

namespace orbelantine {

bool WindowRegistry::add(WindowApi& api, WindowApi::Handle window, const Entry& entry) {
    const std::lock_guard lock(mMutex);
    return mEntries.try_emplace({&api, window}, entry).second;
}

void WindowRegistry::remove(WindowApi& api, WindowApi::Handle window) {
    const std::lock_guard lock(mMutex);
    mEntries.erase({&api, window});
}

WindowRegistry::Entry WindowRegistry::find(WindowApi& api, WindowApi::Handle window) {
    const std::lock_guard lock(mMutex);
    const auto found = mEntries.find({&api, window});
    return found == mEntries.end() ? Entry() : found->second;
}

WindowRegistry& WindowRegistry::instance() {
    static auto& registry = *new WindowRegistry;
    return registry;
}

WindowApi::Result handleWindowMessage(WindowApi& api, const WindowMessage& message) {
    const WindowRegistry::Entry entry = WindowRegistry::instance().find(api, message.window);
    // Held to the end of the message: a slot may let go of it.
    if (const auto context = entry.context.lock())
        return context->handle(message);
    return entry.previous != 0 ? api.callProcedure(entry.previous, message)
                               : api.callDefaultProcedure(message);
}

} // namespace orbelantine
