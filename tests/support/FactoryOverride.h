#pragma once

#include "core/common/OSAL.h"

#include <functional>
#include <string>
#include <utility>

namespace orbelantine::test {

/// Serves an implementation's name in the factory as long as this object lives.
template <class Interface, class... Arguments>
class FactoryOverride final : public OSALCreator<Interface, Arguments...> {
  public:
    using Object = boost::shared_ptr<Interface>;
    using Function = std::function<Object(const KVStore& store, Arguments...)>;

    FactoryOverride(std::string name, Function function)
        : mName(std::move(name))
        , mFunction(std::move(function)) {
        try {
            mFormer = OSALFactory::instance().retrieveFactory(mName, mName);
        } catch (const Exception&) {
            mFormer = nullptr;
        }
        OSALFactory::registerFactory(mName, static_cast<OSALCreatorBase*>(this));
    }

    FactoryOverride(std::string name, Object object)
        : FactoryOverride(std::move(name), [object](auto&&...) { return object; }) {}

    ~FactoryOverride() override { OSALFactory::registerFactory(mName, mFormer); }

    FactoryOverride(const FactoryOverride&) = delete;
    FactoryOverride& operator=(const FactoryOverride&) = delete;

  private:
    Object create(const KVStore& store, Arguments... arguments) const override {
        return mFunction(store, arguments...);
    }

    std::string mName;
    Function mFunction;
    void* mFormer;
};

} // namespace orbelantine::test
