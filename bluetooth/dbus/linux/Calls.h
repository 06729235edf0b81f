#pragma once

#include "bluetooth/dbus/linux/Bus.h"

#include <boost/asio/io_context.hpp>
#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace orbelantine::dbus {

/// Calls to BlueZ that nobody waits for. All of it belongs to the thread that serves the bus, which
/// runs the io_service; it goes before both, not in a handler, and its calls then go unanswered.
class Calls {
  public:
    /// What became of a call: null for success. Called once, from a handler of the bus or the
    /// queue.
    using Done = std::function<void(const sdbus::Error* error, sdbus::MethodReply& reply)>;

    Calls(Bus& bus, boost::asio::io_context& ioService)
        : mBus(bus)
        , mIoService(ioService) {}

    ~Calls();
    Calls(const Calls&) = delete;
    Calls& operator=(const Calls&) = delete;

    struct Method {
        std::string path;
        const char* interface;
        const char* name;
        std::chrono::microseconds longest = kLongestCall;
    };

    template <class... Arguments>
    void call(const Method& method, Done done, const Arguments&... arguments);

    /// Calls without an answer: at the end, when nobody is there any more to take one.
    template <class... Arguments>
    void tell(const Method& method, const Arguments&... arguments) noexcept;

    /// Ends every call, with the error of a BlueZ that isn't there.
    void abandon();

  private:
    struct Call {
        std::unique_ptr<sdbus::IProxy> object;
        Done done;
    };

    void send(const std::shared_ptr<Call>& call, const sdbus::MethodCall& message,
              std::chrono::microseconds longest);
    void endLater(const std::shared_ptr<Call>& call, const sdbus::Error& error);
    void end(const std::shared_ptr<Call>& call, const sdbus::Error* error,
             sdbus::MethodReply& reply);

    Bus& mBus;
    boost::asio::io_context& mIoService;
    std::list<std::shared_ptr<Call>> mCalls;
    // An object may have ended its call in its own handler: it goes from the queue.
    std::vector<std::unique_ptr<sdbus::IProxy>> mEnded;
    // For what is in the queue: false once this has gone.
    std::shared_ptr<bool> mHere = std::make_shared<bool>(true);
};

template <class... Arguments>
void Calls::call(const Method& method, Done done, const Arguments&... arguments) {
    const auto call = std::make_shared<Call>(Call{nullptr, std::move(done)});
    mCalls.push_back(call);
    try {
        call->object = mBus.blueZ(method.path);
        auto message = call->object->createMethodCall(method.interface, method.name);
        static_cast<void>((message << ... << arguments));
        send(call, message, method.longest);
    } catch (const sdbus::Error& error) {
        endLater(call, error);
    }
}

template <class... Arguments>
void Calls::tell(const Method& method, const Arguments&... arguments) noexcept {
    try {
        const auto object = mBus.blueZ(method.path);
        auto message = object->createMethodCall(method.interface, method.name);
        static_cast<void>((message << ... << arguments));
        message.dontExpectReply();
        object->callMethod(message);
    } catch (const std::exception&) {
        // BlueZ finds out by the end of the connection.
    }
}

} // namespace orbelantine::dbus
