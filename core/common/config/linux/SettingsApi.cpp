#include "core/common/config/SettingsApi.h"

#include "core/common/errors/ErrorCode.h"

#include <boost/algorithm/string/trim.hpp>

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace orbelantine {

namespace {

std::filesystem::path configFolder() {
    // A relative path in the variable counts as none.
    const char* config = std::getenv("XDG_CONFIG_HOME");
    if (config != nullptr && *config == '/')
        return config;
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home != nullptr ? home : "/") / ".config";
}

SettingsApi::Error parse(const std::string& text, std::uint32_t& value) {
    std::uint32_t parsed = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, failure] = std::from_chars(text.data(), end, parsed);
    if (failure != std::errc() || rest != end)
        return win32::kErrorInvalidData;
    value = parsed;
    return win32::kErrorSuccess;
}

/// Lines of the form "Name = 123"; others are passed over.
class SettingsFile final : public SettingsApi {
  public:
    Error getInteger(const char* name, std::uint32_t& value) override {
        std::ifstream file(configFolder() / "orbelantine" / "settings");
        for (std::string line; std::getline(file, line);) {
            const auto equals = line.find('=');
            if (equals != std::string::npos &&
                boost::algorithm::trim_copy(line.substr(0, equals)) == name)
                return parse(boost::algorithm::trim_copy(line.substr(equals + 1)), value);
        }
        return win32::kErrorFileNotFound;
    }
};

} // namespace

SettingsApi& SettingsApi::system() {
    static SettingsFile api;
    return api;
}

} // namespace orbelantine
