#include "binding/Lending.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <utility>

namespace orbelantine::binding {

namespace {

std::atomic<void (*)(void*)> releasePin;

/// Lets go of the object first: the host may dispose of it once its pin is free.
class Lent {
  public:
    Lent(boost::shared_ptr<void> object, void* pin)
        : mObject(std::move(object))
        , mPin(pin) {}

    ~Lent() {
        mObject.reset();
        releasePin.load()(mPin);
    }

    Lent(const Lent&) = delete;
    Lent& operator=(const Lent&) = delete;

  private:
    boost::shared_ptr<void> mObject;
    void* mPin;
};

} // namespace

} // namespace orbelantine::binding

using orbelantine::binding::Lent;
using orbelantine::binding::releasePin;

// Of whatever type, holders are alike in memory, and flat calls know them by their address alone.
using Holder = boost::shared_ptr<void>;

void orbelantine_register_release(void (*release)(void* pin)) {
    releasePin = release;
}

void* orbelantine_lend(void* holder, void* pin) {
    const Holder& object = *static_cast<const Holder*>(holder);
    return new Holder(boost::make_shared<Lent>(object, pin), object.get());
}

void orbelantine_end_lending(void* holder) {
    delete static_cast<Holder*>(holder);
}

const char* orbelantine_version() {
    return ORBELANTINE_VERSION;
}
