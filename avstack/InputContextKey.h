#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

namespace orbelantine {

class IInputContext;
class KVStore;

/// Tells input sources made from `settings`, or from a copy, which surface they serve. The store
/// and its copies hold a share in it.
void setInputContext(KVStore& settings, const boost::shared_ptr<IInputContext>& context);
/// The surface of setInputContext; empty without one.
[[nodiscard]] boost::shared_ptr<IInputContext> inputContextOf(const KVStore& settings);

} // namespace orbelantine
