#include "tools/soak/ProcessUse.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace orbelantine::soak {

namespace {

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

ProcessUse ProcessUse::now() {
    std::size_t pages = 0;
    std::size_t residentPages = 0;
    std::ifstream("/proc/self/statm") >> pages >> residentPages;
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return {residentPages * pageSize / 1024, entriesOf("/proc/self/fd"),
            entriesOf("/proc/self/task")};
}

} // namespace orbelantine::soak
