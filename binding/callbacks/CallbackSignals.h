#pragma once

#include "binding/callbacks/AudioCallbackFamilies.h"
#include "binding/callbacks/BluetoothCallbackFamilies.h"
#include "binding/callbacks/InputCallbackFamilies.h"
#include "core/common/run/FireSafely.h"

#include <type_traits>
#include <utility>

// The bodies of what a callback family does, and the macros that instantiate them for the rows of
// the tables. Each signature costs the compiler half a second, so its files share the tables by
// the number of arguments: a file defines ORB_INSTANTIATE_<number> as ORB_INSTANTIATE for its own.

namespace orbelantine::binding {

template <class Signature>
boost::function<Signature> functionOf(const boost::function<Signature>* handle) {
    return handle ? *handle : boost::function<Signature>();
}

/// Keeps the host's object as long as it or a copy lives.
template <class Signature>
class HeldCall;

template <class Result, class... Arguments>
class HeldCall<Result(Arguments...)> {
  public:
    using Impl = CallbackImpl<Result(Arguments...)>;

    explicit HeldCall(Impl* impl)
        : mImpl(impl, [](Impl* released) {
            if (released->unpin())
                delete released;
        }) {}

    Result operator()(Arguments... arguments) const { return mImpl->call(std::move(arguments)...); }

  private:
    boost::shared_ptr<Impl> mImpl;
};

template <class Signature>
boost::function<Signature> hold(CallbackImpl<Signature>* impl) {
    impl->pin();
    return HeldCall<Signature>(impl);
}

template <class Signature>
boost::signals2::connection connect(boost::signals2::signal<Signature>& signal,
                                    const boost::function<Signature>* slot) {
    return signal.connect(functionOf(slot));
}

template <class Signature>
boost::signals2::connection connect(boost::signals2::signal<Signature>& signal, int group,
                                    const boost::function<Signature>* slot) {
    return signal.connect(group, functionOf(slot));
}

template <class Signature>
void disconnectAll(boost::signals2::signal<Signature>& signal) {
    signal.disconnect_all_slots();
}

template <class Signature>
unsigned slotCount(const boost::signals2::signal<Signature>& signal) {
    return static_cast<unsigned>(signal.num_slots());
}

template <class Signature>
bool isEmpty(const boost::signals2::signal<Signature>& signal) {
    return signal.empty();
}

template <class Signature>
void destroy(const boost::signals2::signal<Signature>* signal) {
    delete signal;
}

template <class Result, class... Arguments>
Result fire<Result(Arguments...)>::operator()(Arguments... arguments) const {
    if constexpr (std::is_void_v<Result>)
        fireSafely(mSignal, std::move(arguments)...);
    else
        return fireSafely(mSignal, std::move(arguments)...).value();
}

} // namespace orbelantine::binding

#define ORB_INSTANTIATE(...)                                                                       \
    template boost::function<__VA_ARGS__> hold(CallbackImpl<__VA_ARGS__>*);                        \
    template boost::signals2::connection connect(boost::signals2::signal<__VA_ARGS__>&,            \
                                                 const boost::function<__VA_ARGS__>*);             \
    template boost::signals2::connection connect(boost::signals2::signal<__VA_ARGS__>&, int,       \
                                                 const boost::function<__VA_ARGS__>*);             \
    template void disconnectAll(boost::signals2::signal<__VA_ARGS__>&);                            \
    template unsigned slotCount(const boost::signals2::signal<__VA_ARGS__>&);                      \
    template bool isEmpty(const boost::signals2::signal<__VA_ARGS__>&);                            \
    template void destroy(const boost::signals2::signal<__VA_ARGS__>*);                            \
    template struct fire<__VA_ARGS__>;
