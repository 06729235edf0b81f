#include "core/common/errors/ErrorCategory.h"

#include "core/common/errors/SystemText.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <sstream>

namespace orbelantine {

ErrorMessages::ErrorMessages(int first, std::string_view names)
    : mFirst(first)
    , mTexts{"Success"} {
    constexpr std::string_view kSeparator = ", ";
    while (!names.empty()) {
        const std::string_view name = names.substr(0, names.find(kSeparator));
        mTexts.push_back("Error code - " + std::string(name));
        names.remove_prefix(std::min(names.size(), name.size() + kSeparator.size()));
    }
}

std::string_view ErrorMessages::at(int value) const {
    const auto index = value == 0 ? 0 : static_cast<std::int64_t>(value) - (mFirst - 1);
    const bool known = value == 0 || (index > 0 && index < std::ssize(mTexts));
    return known ? std::string_view(mTexts[static_cast<std::size_t>(index)]) : std::string_view();
}

std::string categorisedMessage(const char* category, std::string_view text) {
    std::ostringstream message;
    message << "'Category: " << category << ", Message: " << text << "'";
    return message.str();
}

template <>
std::string ErrorCategory<Win32Api>::message(int value) const {
    return categorisedMessage(name(), systemErrorText(value));
}

} // namespace orbelantine
