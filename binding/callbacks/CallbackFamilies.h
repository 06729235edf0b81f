#pragma once

#include <boost/asio/ip/address.hpp>
#include <boost/function.hpp>
#include <boost/signals2/signal.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>
#include <boost/system/error_code.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orbelantine::binding {

/// What a host implements to be called: `pin` when native code takes hold of the object, `unpin`
/// when the last native copy is gone; its true asks for the object's deletion. Any thread.
template <class Signature>
struct CallbackImpl;

template <class Result, class... Arguments>
struct CallbackImpl<Result(Arguments...)> {
    using Signature = Result(Arguments...);

    virtual ~CallbackImpl() = default;
    virtual void pin() = 0;
    virtual bool unpin() = 0;
    virtual Result call(Arguments... arguments) = 0;
};

/// A completion that may be called: one that does nothing for no function and for an empty one.
inline boost::function<void(boost::system::error_code)>
completionOf(const boost::function<void(boost::system::error_code)>* handle) {
    if (handle && !handle->empty())
        return *handle;
    return [](boost::system::error_code) {};
}

/// What a family does, instantiated once for each row of the tables (CallbackSignals*.cpp).
/// @{

/// A function that calls the host's object. Its copies share one hold on it.
template <class Signature>
boost::function<Signature> hold(CallbackImpl<Signature>* impl);

/// No handle is an empty function.
template <class Signature>
boost::signals2::connection connect(boost::signals2::signal<Signature>& signal,
                                    const boost::function<Signature>* slot);
template <class Signature>
boost::signals2::connection connect(boost::signals2::signal<Signature>& signal, int group,
                                    const boost::function<Signature>* slot);
template <class Signature>
void disconnectAll(boost::signals2::signal<Signature>& signal);

template <class Signature>
unsigned slotCount(const boost::signals2::signal<Signature>& signal);
template <class Signature>
bool isEmpty(const boost::signals2::signal<Signature>& signal);

template <class Signature>
void destroy(const boost::signals2::signal<Signature>* signal);

/// Fires a signal as its signature says: a result is the last slot's, and having none throws. A
/// slot may end the signal's owner.
template <class Signature>
struct fire;

template <class Result, class... Arguments>
struct fire<Result(Arguments...)> {
    explicit fire(boost::signals2::signal<Result(Arguments...)>& signal)
        : mSignal(signal) {}

    Result operator()(Arguments... arguments) const;

  private:
    boost::signals2::signal<Result(Arguments...)>& mSignal;
};

/// @}

} // namespace orbelantine::binding

/// Names that the families' signatures use.
/// @{
using wstring_director = std::wstring;
using stdMapStringString = std::map<std::string, std::string>;
using stdMapStringWstring = std::map<std::string, std::wstring>;
using stdMapUintWstring = std::map<unsigned int, std::wstring>;
using stdMapWstringWstring = std::map<std::wstring, std::wstring>;
using vectorUint8 = std::vector<std::uint8_t>;
using functionInt = boost::function<void(int)>;
using functionErrorCode = boost::function<void(boost::system::error_code)>;
using functionString = boost::function<void(std::string)>;
using functionStringErrorCode = boost::function<void(std::string, boost::system::error_code)>;
/// @}

/// Declares what hosts derive from; one for each row of a table.
#define ORB_CALLBACK_IMPL(NAME, RESULT, COUNT, TYPES)                                              \
    struct NAME##Impl : orbelantine::binding::CallbackImpl<RESULT TYPES> {};

#define ORB_CALLBACK_FAMILY ORB_CALLBACK_IMPL
#include "binding/callbacks/CallbackTableCommon.inc"
#undef ORB_CALLBACK_FAMILY
