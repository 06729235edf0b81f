#pragma once

#include "tools/virtual_stack/linux/Value.h"

#include <sdbus-c++/sdbus-c++.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::stack {

/// An object with one interface, and its properties, from publish() until it is destroyed. On the
/// bus's thread alone, like all that calls the bus.
class BusObject {
  public:
    /// Throws sdbus::Error for a value that won't do.
    using Write = std::function<void(const std::string& name, const Value& value)>;

    /// `write` is called for a property that a client sets.
    BusObject(sdbus::IConnection& connection, std::string path, std::string interface,
              Write write = nullptr);
    BusObject(const BusObject&) = delete;
    BusObject& operator=(const BusObject&) = delete;
    ~BusObject();

    [[nodiscard]] const std::string& path() const { return mPath; }

    template <class Callback>
    void method(const std::string& name, Callback callback) {
        mObject->registerMethod(name).onInterface(mInterface).implementedAs(std::move(callback));
    }

    /// Who calls the method that runs.
    [[nodiscard]] std::string sender() const {
        return mObject->getCurrentlyProcessedMessage()->getSender();
    }

    /// Those that clients may write, named before they get their first value.
    void writable(const std::string& name) { mWritable.push_back(name); }

    /// One that drop() may take away again; named before it gets its first value too.
    void passing(const std::string& name) { mPassing.push_back(name); }

    /// Tells of a value that is another than before.
    void set(const std::string& name, const Value& value);
    void drop(const std::string& name);

    /// Registers what there is; from here on the ObjectManager has it.
    void publish();

  private:
    void registerProperty(const std::string& name);
    void registerPassing(const std::string& name);
    void tell(const std::string& name);
    void registerAt(sdbus::IObject& object, const std::string& name);

    sdbus::IConnection& mConnection;
    std::string mPath;
    std::string mInterface;
    Write mWrite;
    std::vector<std::string> mWritable;
    std::vector<std::string> mPassing;
    std::map<std::string, Value> mValues;
    std::unique_ptr<sdbus::IObject> mObject;
    /// A passing property is an object of its own, with the same path and interface.
    std::map<std::string, std::unique_ptr<sdbus::IObject>> mPassingObjects;
    bool mPublished = false;
};

/// Does something on the bus that may be gone meanwhile, which whoever serves it notices.
template <class Job>
void quietly(Job job) {
    try {
        job();
    } catch (const sdbus::Error&) {
        // Nobody is there to be told.
    }
}

} // namespace orbelantine::stack
