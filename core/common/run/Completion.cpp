#include "core/common/run/Completion.h"

#include "core/common/log/Log.h"

#include <boost/exception/diagnostic_information.hpp>

#include <utility>

namespace orbelantine {

OnceCompletion::OnceCompletion(Completion completion, error_code dropped)
    : mCompletion(std::move(completion))
    , mDropped(dropped) {}

OnceCompletion::~OnceCompletion() {
    try {
        (*this)(mDropped);
    } catch (...) {
        ORB_LOG(kLogError, "%s() %s", boost::current_exception_diagnostic_information().c_str());
    }
}

void OnceCompletion::operator()(error_code ec) {
    const Completion completion = std::exchange(mCompletion, Completion());
    complete(completion, ec);
}

} // namespace orbelantine
