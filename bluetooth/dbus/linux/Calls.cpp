#include "bluetooth/dbus/linux/Calls.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace orbelantine::dbus {

Calls::~Calls() {
    // What is in the queue may hold a call longer.
    for (const auto& call : mCalls)
        call->object.reset();
}

void Calls::abandon() {
    const sdbus::Error gone("org.freedesktop.DBus.Error.ServiceUnknown", "BlueZ has gone");
    sdbus::MethodReply none;
    const auto calls = mCalls;
    for (const auto& call : calls)
        end(call, &gone, none);
}

void Calls::send(const std::shared_ptr<Call>& call, const sdbus::MethodCall& message,
                 std::chrono::microseconds longest) {
    call->object->callMethod(
        message,
        [this, weak = std::weak_ptr(call)](sdbus::MethodReply& reply, const sdbus::Error* error) {
            const auto answered = weak.lock();
            if (!answered)
                return;
            // An answer that fails may be the first sign of BlueZ's or the bus's end.
            if (error != nullptr)
                endLater(answered, *error);
            else
                end(answered, nullptr, reply);
        },
        longest);
}

void Calls::endLater(const std::shared_ptr<Call>& call, const sdbus::Error& error) {
    boost::asio::post(mIoService, [this, here = std::weak_ptr(mHere), call, error] {
        if (here.expired())
            return;
        sdbus::MethodReply none;
        end(call, &error, none);
    });
}

void Calls::end(const std::shared_ptr<Call>& call, const sdbus::Error* error,
                sdbus::MethodReply& reply) {
    const Done done = std::exchange(call->done, nullptr);
    if (!done)
        return;
    mCalls.remove(call);
    mEnded.push_back(std::move(call->object));
    boost::asio::post(mIoService, [this, here = std::weak_ptr(mHere)] {
        if (!here.expired())
            mEnded.clear();
    });
    try {
        done(error, reply);
    } catch (const sdbus::Error& unreadable) {
        done(&unreadable, reply);
    }
}

} // namespace orbelantine::dbus
