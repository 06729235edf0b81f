#include "core/common/errors/SwigErrorCategory.h"

#include <map>
#include <mutex>

namespace orbelantine {

constinit const SwigErrorCategory GlobalCategory;

const char* SwigErrorCategory::name() const noexcept {
    return "SwigErrorCategory";
}

std::string SwigErrorCategory::message(int value) const {
    // Neither is ever destroyed: the host may ask for a text while the process ends.
    static std::mutex& mutex = *new std::mutex;
    static auto& texts = *new std::map<int, std::string>;

    const std::lock_guard lock(mutex);
    const auto [entry, inserted] = texts.try_emplace(value);
    if (inserted)
        entry->second = "Swig Error: " + std::to_string(value);
    return entry->second;
}

boost::system::error_code SwigErrorCategory::error_code(int value) const {
    return {value, *this};
}

} // namespace orbelantine
