#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

namespace orbelantine {

/// A source whose events take their way through workers of its own.
class IInputFlow {
  public:
    virtual ~IInputFlow() = default;
    /// Sends `mark` behind what was raised so far: it is let go once that has reached the target or
    /// was dropped, on any thread. Any thread may call.
    virtual void follow(const boost::shared_ptr<void>& mark) = 0;
};

} // namespace orbelantine
