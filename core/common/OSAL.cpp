#include "core/common/OSAL.h"

#include "core/common/config/OSALTable.h"
#include "core/common/log/Log.h"

#include <mutex>

namespace orbelantine {

namespace {

/// The registered factories. Static initialisers fill it, worker threads read it; it is never
/// destroyed, as objects may be made while the process ends.
class Registry {
  public:
    static Registry& instance() {
        static Registry& registry = *new Registry;
        return registry;
    }

    void add(const std::string& name, void* factory) {
        const std::lock_guard lock(mMutex);
        mFactories[name] = factory;
    }

    bool holds(const std::string& name) {
        const std::lock_guard lock(mMutex);
        return mFactories.contains(name);
    }

    void* find(const std::string& name) {
        const std::lock_guard lock(mMutex);
        const auto found = mFactories.find(name);
        return found != mFactories.end() ? found->second : nullptr;
    }

    /// Leaves an empty slot under an unknown name, which the registry holds from then on.
    void* slot(const std::string& name) {
        const std::lock_guard lock(mMutex);
        return mFactories[name];
    }

  private:
    std::mutex mMutex;
    std::map<std::string, void*> mFactories;
};

} // namespace

OSALFactory::OSALFactory()
    : mProfiles{"default"} {
    for (const OSALTableRow& row : osalTable())
        mTable[row.profile][row.interfaceName] = row.implementation;
}

OSALFactory& OSALFactory::instance() {
    // Never destroyed: objects may be made while the process ends.
    static OSALFactory& factory = *new OSALFactory;
    return factory;
}

void OSALFactory::registerFactory(const std::string& implementationName, void* factory) {
    Registry::instance().add(implementationName, factory);
}

std::string OSALFactory::lookupFactoryName(const std::string& interfaceName,
                                           const std::string& hint, std::uint32_t index) const {
    if (!hint.empty()) {
        if (Registry::instance().holds(hint))
            return hint;
        std::string found = lookupFactoryNameByType(hint, hint, index);
        if (!found.empty())
            return found;
    }
    return lookupFactoryNameByType(interfaceName, hint, index);
}

std::string OSALFactory::lookupFactoryNameByType(const std::string& name,
                                                 const std::string& profile,
                                                 std::uint32_t index) const {
    std::list<std::string> order(mProfiles);
    order.push_front(profile);
    for (const std::string& candidate : order) {
        const auto rows = mTable.find(candidate);
        if (rows == mTable.end())
            continue;
        ORB_LOG_TEXT(kLogDebug, "OSALFactory::lookupFactoryName(): looking in %s for %s",
                     candidate.c_str(), name.c_str());
        const auto row = rows->second.find(name);
        if (row == rows->second.end())
            continue;
        ORB_LOG_TEXT(kLogDebug, "OSALFactory::lookupFactoryName(): found %s", row->second.c_str());
        if (index-- == 0)
            return row->second;
    }
    return Registry::instance().holds(name) ? name : std::string();
}

void* OSALFactory::retrieveFactory(const std::string& interfaceName,
                                   const std::string& implementationName) const {
    ORB_LOG(kLogDebug, "%s() '%s' - '%s'", implementationName.c_str(), interfaceName.c_str());
    if (void* factory = Registry::instance().find(implementationName)) {
        ORB_LOG(kLogDebug, "%s() returning '%s'", implementationName.c_str());
        return factory;
    }
    if (void* factory = Registry::instance().find(interfaceName)) {
        ORB_LOG(kLogDebug, "%s() returning- '%s'", interfaceName.c_str());
        return factory;
    }
    if (const std::string served = servedByProfiles(interfaceName); !served.empty()) {
        ORB_LOG(kLogDebug, "%s() returning '%s'", served.c_str());
        return Registry::instance().find(served);
    }
    const std::string dummy = interfaceName + "::Dummy";
    const std::string found = lookupFactoryNameByType(dummy, std::string(), 0);
    void* factory = found.empty() ? nullptr : Registry::instance().slot(found);
    if (factory == nullptr)
        BOOST_THROW_EXCEPTION(Exception("Could not find factory for " + dummy));
    return factory;
}

std::string OSALFactory::servedByProfiles(const std::string& interfaceName) const {
    std::string previous;
    for (std::uint32_t index = 0;; ++index) {
        std::string name = lookupFactoryName(interfaceName, std::string(), index);
        if (name.empty() || Registry::instance().slot(name) != nullptr)
            return name;
        // Past the last match, an interface that the registry holds resolves to itself for ever.
        if (name == previous)
            return {};
        previous = std::move(name);
    }
}

} // namespace orbelantine
