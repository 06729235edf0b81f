#include "tools/virtual_stack/linux/BusObject.h"

#include <algorithm>

namespace orbelantine::stack {

namespace {

constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kObjectManager = "org.freedesktop.DBus.ObjectManager";
constexpr const char* kManagerPath = "/";

void read(sdbus::PropertySetCall& call, Value& value) {
    std::visit([&call](auto& plain) { call >> plain; }, value);
}

} // namespace

BusObject::BusObject(sdbus::IConnection& connection, std::string path, std::string interface,
                     Write write)
    : mConnection(connection)
    , mPath(std::move(path))
    , mInterface(std::move(interface))
    , mWrite(std::move(write))
    , mObject(sdbus::createObject(mConnection, mPath)) {}

BusObject::~BusObject() {
    mPassingObjects.clear();
    mObject.reset();
    if (!mPublished)
        return;
    quietly([this] {
        sdbus::createObject(mConnection, kManagerPath)
            ->emitSignal("InterfacesRemoved")
            .onInterface(kObjectManager)
            .withArguments(sdbus::ObjectPath(mPath), std::vector<std::string>{mInterface});
    });
}

void BusObject::set(const std::string& name, const Value& value) {
    const auto [place, isNew] = mValues.try_emplace(name, value);
    if (!isNew && place->second == value)
        return;
    place->second = value;
    if (!mPublished)
        return;
    if (isNew)
        quietly([this, &name] { registerPassing(name); });
    tell(name);
}

void BusObject::tell(const std::string& name) {
    quietly([this, &name] {
        mObject->emitSignal("PropertiesChanged")
            .onInterface(kProperties)
            .withArguments(mInterface, Variants{{name, toVariant(mValues.at(name))}},
                           std::vector<std::string>{});
    });
}

void BusObject::drop(const std::string& name) {
    mPassingObjects.erase(name);
    if (mValues.erase(name) == 0 || !mPublished)
        return;
    quietly([this, &name] {
        mObject->emitSignal("PropertiesChanged")
            .onInterface(kProperties)
            .withArguments(mInterface, Variants{}, std::vector<std::string>{name});
    });
}

void BusObject::publish() {
    Variants variants;
    for (const auto& [name, value] : mValues) {
        registerProperty(name);
        variants[name] = toVariant(value);
    }
    mObject->finishRegistration();
    mPublished = true;
    sdbus::createObject(mConnection, kManagerPath)
        ->emitSignal("InterfacesAdded")
        .onInterface(kObjectManager)
        .withArguments(sdbus::ObjectPath(mPath),
                       std::map<std::string, Variants>{{mInterface, variants}});
}

void BusObject::registerProperty(const std::string& name) {
    if (std::ranges::find(mPassing, name) != mPassing.end())
        registerPassing(name);
    else
        registerAt(*mObject, name);
}

void BusObject::registerPassing(const std::string& name) {
    std::unique_ptr<sdbus::IObject>& object = mPassingObjects[name];
    object = sdbus::createObject(mConnection, mPath);
    registerAt(*object, name);
    object->finishRegistration();
}

void BusObject::registerAt(sdbus::IObject& object, const std::string& name) {
    const auto get = [this, name](sdbus::PropertyGetReply& reply) {
        std::visit([&reply](const auto& plain) { reply << plain; }, mValues.at(name));
    };
    const std::string signature = signatureOf(mValues.at(name));
    if (std::ranges::find(mWritable, name) == mWritable.end())
        return object.registerProperty(mInterface, name, signature, get);
    object.registerProperty(mInterface, name, signature, get,
                            [this, name](sdbus::PropertySetCall& call) {
                                Value value = mValues.at(name);
                                read(call, value);
                                mWrite(name, value);
                            });
}

} // namespace orbelantine::stack
