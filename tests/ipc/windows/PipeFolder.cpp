#include "tests/ipc/PipeFolder.h"

#include <windows.h>

#include <atomic>

namespace orbelantine::test {

PipeFolder::PipeFolder() {
    static std::atomic<int> count = 0;
    mName =
        "orbelantine-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(count++);
}

PipeFolder::~PipeFolder() = default;

} // namespace orbelantine::test
