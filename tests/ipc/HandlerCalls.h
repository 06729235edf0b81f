#pragma once

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/PipeDuplexHandler.h"

#include <future>
#include <string>
#include <utility>

namespace orbelantine::test {

inline error_code systemError(std::uint32_t number) {
    return {static_cast<int>(number), boost::system::system_category()};
}

inline const error_code kAborted = systemError(win32::kErrorOperationAborted);
/// What no call comes to.
inline const error_code kUntouched = systemError(77);

inline std::string readUpTo(PipeDuplexHandler& handler, int size, error_code& ec) {
    std::string text(static_cast<std::size_t>(size), '\0');
    text.resize(static_cast<std::size_t>(handler.readSome(text.data(), size, ec)));
    return text;
}

inline error_code writeAll(PipeDuplexHandler& handler, const std::string& text) {
    error_code ec = kUntouched;
    handler.write(text.data(), static_cast<int>(text.size()), ec);
    return ec;
}

/// Runs a blocking call on a thread of its own.
template <class Body>
auto startCall(Body body) {
    return std::async(std::launch::async, std::move(body));
}

} // namespace orbelantine::test
