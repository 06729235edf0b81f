#pragma once

#include "core/common/errors/ErrorCode.h"

#include <boost/function.hpp>

namespace orbelantine {

/// Called once at the end of an asynchronous operation.
using Completion = boost::function<void(boost::system::error_code)>;

/// An empty completion counts as one that does nothing.
inline void complete(const Completion& completion, error_code ec) {
    if (completion)
        completion(ec);
}

/// A completion that comes once, whatever becomes of its operation: when it goes without having
/// been called, it is called with `dropped`, on the thread that drops it.
class OnceCompletion {
  public:
    OnceCompletion(Completion completion, error_code dropped);
    ~OnceCompletion();
    OnceCompletion(OnceCompletion&&) = default;
    OnceCompletion& operator=(OnceCompletion&&) = delete;

    void operator()(error_code ec);

  private:
    Completion mCompletion;
    error_code mDropped;
};

} // namespace orbelantine
