#pragma once

#include <boost/signals2/signal.hpp>

#include <utility>

namespace orbelantine {

/// Fires a signal that may be destroyed, with its owner, in one of its slots.
template <class Signature, class... Arguments>
auto fireSafely(const boost::signals2::signal<Signature>& signal, Arguments&&... arguments) {
    const typename boost::signals2::signal<Signature>::weak_signal_type firing(signal);
    return firing(std::forward<Arguments>(arguments)...);
}

} // namespace orbelantine
