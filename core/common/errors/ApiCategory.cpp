#include "core/common/errors/ApiCategory.h"

#include <map>
#include <mutex>

namespace orbelantine {

const boost::system::error_category& apiCategory(const std::string& apiName) {
    // Neither is ever destroyed: error codes keep references to the categories.
    static std::mutex& mutex = *new std::mutex;
    static auto& categories = *new std::map<std::string, ApiCategory<Win32Api>>;

    const std::lock_guard lock(mutex);
    return categories.try_emplace(apiName, apiName).first->second;
}

} // namespace orbelantine
