#include "ipc/pipe/linux/PollUntil.h"

#include "ipc/pipe/linux/PipeWire.h"

#include <algorithm>
#include <limits>

namespace orbelantine {

int pollUntil(std::span<pollfd> files, std::chrono::steady_clock::time_point deadline) {
    return pipe_wire::uninterrupted([&] {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        const auto timeout = std::clamp<std::chrono::milliseconds::rep>(
            left.count(), 0, std::numeric_limits<int>::max());
        return ::poll(files.data(), files.size(), static_cast<int>(timeout));
    });
}

} // namespace orbelantine
