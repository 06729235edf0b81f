#pragma once

#include "core/common/config/KVStore.h"
#include "core/common/errors/Exception.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/throw_exception.hpp>

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <type_traits>
#include <utility>

namespace orbelantine {

/// Finds the implementation of an interface by name: a table per profile, searched in the order of
/// a caller's hint and then the profile list, over the implementations that registered themselves.
/// Any thread may look up; the profile list is changed before others do.
class OSALFactory {
  public:
    /// Knows the product's own table and the one profile "default".
    OSALFactory();
    /// The process's factory, made at first use.
    static OSALFactory& instance();

    /// The profiles searched after the hint, in order.
    std::list<std::string>& profiles() { return mProfiles; }

    /// The implementation's name, or empty. `hint` names an implementation, an interface or a
    /// profile; `index` picks the n-th match across the profiles.
    [[nodiscard]] std::string lookupFactoryName(const std::string& interfaceName,
                                                const std::string& hint, std::uint32_t index) const;
    /// The same for `name` within `profile` and then the profile list.
    [[nodiscard]] std::string lookupFactoryNameByType(const std::string& name,
                                                      const std::string& profile,
                                                      std::uint32_t index) const;
    /// The registered factory of the implementation, else of the interface, else of what the
    /// profiles name, else of "<interface>::Dummy". Throws Exception if there is none.
    [[nodiscard]] void* retrieveFactory(const std::string& interfaceName,
                                        const std::string& implementationName) const;

    /// Makes `factory` known under the implementation's name for the life of the process.
    static void registerFactory(const std::string& implementationName, void* factory);

  private:
    using Implementations = std::map<std::string, std::string>;

    /// The first implementation that the profiles name and that is registered, or empty.
    [[nodiscard]] std::string servedByProfiles(const std::string& interfaceName) const;

    std::map<std::string, Implementations> mTable;
    std::list<std::string> mProfiles;
};

/// What a registered factory points to. The check of the kind keeps a hint that names some other
/// interface's implementation from being called as this one's.
class OSALCreatorBase {
  public:
    virtual ~OSALCreatorBase() = default;
};

template <class Interface, class... CtorArgs>
class OSALCreator : public OSALCreatorBase {
  public:
    [[nodiscard]] virtual boost::shared_ptr<Interface> create(const KVStore& store,
                                                              CtorArgs... args) const = 0;
};

/// Makes `Implementation(store, args...)`, or `Implementation(args...)` where it takes no store.
template <class Interface, class Implementation, class... CtorArgs>
class OSALCreatorOf final : public OSALCreator<Interface, CtorArgs...> {
  public:
    [[nodiscard]] boost::shared_ptr<Interface> create([[maybe_unused]] const KVStore& store,
                                                      CtorArgs... args) const override {
        if constexpr (std::is_constructible_v<Implementation, const KVStore&, CtorArgs...>)
            return boost::make_shared<Implementation>(store, std::forward<CtorArgs>(args)...);
        else
            return boost::make_shared<Implementation>(std::forward<CtorArgs>(args)...);
    }
};

/// A static object whose making registers an implementation.
template <class Interface, class Implementation, class... CtorArgs>
class OSALRegistration {
  public:
    explicit OSALRegistration(const char* implementationName) {
        // Owned by the registry, which lasts as long as the process.
        OSALCreatorBase* creator = new OSALCreatorOf<Interface, Implementation, CtorArgs...>;
        OSALFactory::registerFactory(std::string(implementationName), creator);
    }
};

/// Makes the object that serves `interfaceName`. Throws Exception if nothing does, or if what was
/// found makes something else than `Interface` out of `CtorArgs`.
template <class Interface, class... CtorArgs>
[[nodiscard]] boost::shared_ptr<Interface>
osalCreate(OSALFactory& factory, const char* interfaceName, const KVStore& store,
           const std::string& hint, CtorArgs... args) {
    const std::string name(interfaceName);
    void* found = factory.retrieveFactory(name, factory.lookupFactoryName(name, hint, 0));
    const auto* creator = dynamic_cast<const OSALCreator<Interface, CtorArgs...>*>(
        static_cast<const OSALCreatorBase*>(found));
    if (creator == nullptr)
        BOOST_THROW_EXCEPTION(Exception("Found a factory of another kind for " + name));
    return creator->create(store, std::forward<CtorArgs>(args)...);
}

} // namespace orbelantine

#define ORB_OSAL_JOIN_(a, b) a##b
#define ORB_OSAL_JOIN(a, b) ORB_OSAL_JOIN_(a, b)

/// At namespace scope: registers `Implementation` of `Interface` under `name`; the further
/// arguments are the types that its constructor takes after the store.
#define ORB_OSAL_REGISTER(Interface, Implementation, name, ...)                                    \
    static const ::orbelantine::OSALRegistration<Interface,                                        \
                                                 Implementation __VA_OPT__(, ) __VA_ARGS__>        \
    ORB_OSAL_JOIN(orbOsalRegistration, __COUNTER__)(name)
