#include "binding/callbacks/CallbackFamilies.h"
#include "tests/binding/Library.h"

#include <boost/signals2/signal.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace orbelantine::test {
namespace {

using Handle = void*;
using IntFunction = boost::function<void(int)>;
using IntSignal = boost::signals2::signal<void(int)>;

/// A host's object of the family IntCallback; the delegates of all are the same.
class HostObject {
  public:
    HostObject() {
        using Delegates = void(Handle, void (*)(), unsigned (*)(), void (*)(int));
        library.common<Delegates>("IntCallbackImpl_director_connect")(handle, &pin, &unpin, &call);
    }

    HostObject(const HostObject&) = delete;
    HostObject& operator=(const HostObject&) = delete;

    ~HostObject() { library.common<void(Handle)>("delete_IntCallbackImpl")(handle); }

    static void pin() { ++pins; }

    static unsigned unpin() {
        ++unpins;
        return 0;
    }

    static void call(int value) { sum += value; }

    inline static std::atomic<int> pins = 0;
    inline static std::atomic<int> unpins = 0;
    inline static std::atomic<int> sum = 0;

    Library& library = Library::instance();
    Handle handle = library.common<Handle()>("new_IntCallbackImpl")();
};

class Callbacks : public testing::Test {
  protected:
    void SetUp() override { HostObject::pins = HostObject::unpins = HostObject::sum = 0; }

    void drop(Handle connection) {
        library.common<void(Handle)>("connection_disconnect")(connection);
        library.common<void(Handle)>("delete_connection")(connection);
    }

    template <class Action>
    static std::string thrownBy(Action action) {
        try {
            action();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    Library& library = Library::instance();
};

TEST_F(Callbacks, CopiesOfAFunctionShareOneHoldOnTheHostsObject) {
    HostObject object;
    const auto copyOf = library.common<Handle(Handle)>("new_IntCallback__SWIG_0");
    const auto release = library.common<void(Handle)>("delete_IntCallback");
    const Handle first = library.common<Handle(Handle)>("new_IntCallback__SWIG_1")(object.handle);
    const Handle second = copyOf(first);
    release(first);
    library.common<void(Handle, int)>("IntCallback_call")(second, 5);
    EXPECT_EQ(0, HostObject::unpins);
    release(second);
    EXPECT_EQ(1, HostObject::pins);
    EXPECT_EQ(1, HostObject::unpins);
    EXPECT_EQ(5, HostObject::sum);
}

TEST_F(Callbacks, ManyThreadsMayConnectFireAndDisconnect) {
    IntSignal signal;
    HostObject object;
    const Handle function =
        library.common<Handle(Handle)>("new_IntCallback__SWIG_1")(object.handle);
    const auto connect =
        library.common<Handle(Handle, Handle)>("SignalIntCallback_connect__SWIG_0");
    const Handle kept = connect(&signal, function);
    const auto fire = library.common<void(Handle, int)>("SignalIntCallback_call");
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 2; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < 1000; ++i)
                fire(&signal, 1);
        });
        threads.emplace_back([&] {
            for (int i = 0; i < 1000; ++i)
                drop(connect(&signal, function));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    library.common<void(Handle)>("delete_IntCallback")(function);
    EXPECT_LE(2000, HostObject::sum);
    EXPECT_EQ(1U, signal.num_slots());
    EXPECT_EQ(0, HostObject::unpins);
    drop(kept);
    EXPECT_EQ(1, HostObject::unpins);
}

TEST_F(Callbacks, AnEmptyFunctionThrowsThroughTheExport) {
    IntFunction empty;
    const auto call = library.common<void(Handle, int)>("IntCallback_call");
    EXPECT_EQ("call to empty boost::function", thrownBy([&] { call(&empty, 1); }));
    IntSignal signal;
    const auto connect =
        library.common<Handle(Handle, Handle)>("SignalIntCallback_connect__SWIG_0");
    const Handle connection = connect(&signal, nullptr);
    EXPECT_EQ(std::nullopt, library.takeError());
    EXPECT_EQ("call to empty boost::function", thrownBy([&] { signal(1); }));
    drop(connection);
}

TEST_F(Callbacks, ASignalWithoutASlotHasNoResult) {
    boost::signals2::signal<bool()> signal;
    const auto fire = library.common<unsigned(Handle)>("SignalBoolRequestCallback_call");
    EXPECT_EQ("Attempted to access the value of an uninitialized optional object.",
              thrownBy([&] { static_cast<void>(fire(&signal)); }));
}

TEST_F(Callbacks, AnObjectWithoutDelegatesThrowsWhatItsPureOperationIsAndIsNotHeld) {
    const Handle impl = library.common<Handle()>("new_StringCallbackImpl")();
    const auto construct = library.common<Handle(Handle)>("new_StringCallback__SWIG_1");
    EXPECT_EQ("Attempt to invoke pure virtual method StringCallbackImpl::pin",
              thrownBy([&] { construct(impl); }));
    const auto call = library.common<void(Handle, const char*)>("StringCallbackImpl_call");
    EXPECT_EQ("Attempt to invoke pure virtual method StringCallbackImpl::call",
              thrownBy([&] { call(impl, "text"); }));
    library.common<void(Handle)>("delete_StringCallbackImpl")(impl);
}

} // namespace
} // namespace orbelantine::test
