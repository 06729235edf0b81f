#include "core/common/log/LogPathsApi.h"

#include <boost/filesystem/operations.hpp>
#include <boost/nowide/convert.hpp>
#include <dlfcn.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace orbelantine {

namespace {

std::string environmentValue(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value != nullptr ? value : std::string();
}

bool isNameCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// A variable at the start of `text`, "$NAME" or "${NAME}"; `length` is zero if there is none.
struct Variable {
    explicit Variable(std::string_view text) {
        const bool braced = text.starts_with("${");
        const std::size_t begin = braced ? 2 : 1;
        std::size_t end = begin;
        while (end < text.size() && isNameCharacter(text[end]))
            ++end;
        const bool closed = !braced || (end < text.size() && text[end] == '}');
        if (end == begin || !closed)
            return;
        name = text.substr(begin, end - begin);
        length = braced ? end + 1 : end;
    }

    std::string name;
    std::size_t length = 0;
};

std::string expandVariables(std::string_view text) {
    std::string expanded;
    while (!text.empty()) {
        const Variable variable(text.front() == '$' ? text : std::string_view());
        const char* value = variable.length > 0 ? std::getenv(variable.name.c_str()) : nullptr;
        const std::size_t taken = variable.length > 0 ? variable.length : 1;
        expanded += value != nullptr ? std::string_view(value) : text.substr(0, taken);
        text.remove_prefix(taken);
    }
    return expanded;
}

class LinuxLogPathsApi final : public LogPathsApi {
  public:
    std::vector<std::wstring> commandLine() override {
        std::vector<std::wstring> arguments;
        std::ifstream file("/proc/self/cmdline", std::ios::binary);
        for (std::string argument; std::getline(file, argument, '\0');)
            arguments.push_back(boost::nowide::widen(argument));
        return arguments;
    }

    std::wstring expandEnvironment(const std::wstring& text) override {
        const std::string narrow = boost::nowide::narrow(text);
        std::wstring expanded = boost::nowide::widen(expandVariables(narrow));
        return expanded.size() < kExpandedSize ? expanded : std::wstring();
    }

    std::wstring localDataFolder() override {
        // A relative path in the variable counts as none.
        const std::string data = environmentValue("XDG_DATA_HOME");
        if (data.starts_with('/'))
            return boost::nowide::widen(data);
        const std::string home = environmentValue("HOME");
        return home.empty() ? std::wstring() : boost::nowide::widen(home + "/.local/share");
    }

    std::wstring temporaryFolder() override {
        boost::system::error_code error;
        const auto folder = boost::filesystem::temp_directory_path(error);
        return error ? std::wstring() : boost::nowide::widen(folder.native());
    }

    void createFolder(const std::wstring& folder) override {
        std::error_code ignored;
        std::filesystem::create_directories(boost::nowide::narrow(folder), ignored);
    }

    std::wstring modulePath() override {
        static const char kInside = 0;
        Dl_info info{};
        const bool found = dladdr(&kInside, &info) != 0 && info.dli_fname != nullptr;
        return found ? boost::nowide::widen(info.dli_fname) : std::wstring();
    }

    [[nodiscard]] wchar_t separator() const override { return L'/'; }
};

} // namespace

LogPathsApi& LogPathsApi::system() {
    // Never destroyed: threads may log while the process ends.
    static LogPathsApi& api = *new LinuxLogPathsApi;
    return api;
}

} // namespace orbelantine
