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

} // namespace orbelantine
