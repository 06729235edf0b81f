#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

namespace orbelantine {
class IClock;
class IMouseSource;
class KVStore;
} // namespace orbelantine

namespace orbelantine::aim {

/// The pointing source under test, all of its time taken from `clock`, which outlives it. One is
/// made and gone before the next.
[[nodiscard]] boost::shared_ptr<IMouseSource> makeSource(const KVStore& configuration,
                                                         IClock& clock);

} // namespace orbelantine::aim
