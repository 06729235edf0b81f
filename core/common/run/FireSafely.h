#pragma once

#include <boost/signals2/signal.hpp>

#include <utility>

namespace orbelantine {

/// What a signal is made of, for as long as one firing needs it.
template <class Signature>
class FiringHold : boost::signals2::signal<Signature> {
  public:
    using Signal = boost::signals2::signal<Signature>;

    // Protected, for slots that track a signal. A weak_signal would count twice as often.
    static auto of(const Signal& signal) { return (signal.*(&FiringHold::lock_pimpl))(); }
};

/// Fires a signal that may be destroyed, with its owner, in one of its slots.
template <class Signature, class... Arguments>
auto fireSafely(const boost::signals2::signal<Signature>& signal, Arguments&&... arguments) {
    const auto hold = FiringHold<Signature>::of(signal);
    return signal(std::forward<Arguments>(arguments)...);
}

} // namespace orbelantine
