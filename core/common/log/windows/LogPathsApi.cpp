#include "core/common/log/LogPathsApi.h"

#include <boost/filesystem/operations.hpp>

// clang-format off
#include <windows.h>
#include <shellapi.h>
#include <shlobj.h>
// clang-format on

#include <array>

namespace orbelantine {

namespace {

class WindowsLogPathsApi final : public LogPathsApi {
  public:
    std::vector<std::wstring> commandLine() override {
        int count = 0;
        wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
        if (arguments == nullptr)
            return {};
        std::vector<std::wstring> result(arguments, arguments + count);
        LocalFree(arguments);
        return result;
    }

    std::wstring expandEnvironment(const std::wstring& text) override {
        std::array<wchar_t, kExpandedSize> buffer{};
        const DWORD size = ExpandEnvironmentStringsW(text.c_str(), buffer.data(), kExpandedSize);
        return size <= kExpandedSize ? std::wstring(buffer.data()) : std::wstring();
    }

    std::wstring localDataFolder() override {
        wchar_t* path = nullptr;
        const HRESULT result = SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &path);
        const std::wstring folder = SUCCEEDED(result) ? path : std::wstring();
        CoTaskMemFree(path);
        return folder;
    }

    std::wstring temporaryFolder() override {
        boost::system::error_code error;
        const auto folder = boost::filesystem::temp_directory_path(error);
        return error ? std::wstring() : folder.wstring();
    }

    void createFolder(const std::wstring& folder) override {
        SHCreateDirectory(nullptr, folder.c_str());
    }

    std::wstring modulePath() override {
        static const char kInside = 0;
        HMODULE module = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                               GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<const wchar_t*>(&kInside), &module);
        constexpr DWORD kLongestPath = 32768;
        std::wstring path(kLongestPath, L'\0');
        path.resize(GetModuleFileNameW(module, path.data(), kLongestPath));
        return path;
    }

    [[nodiscard]] wchar_t separator() const override { return L'\\'; }
};

} // namespace

LogPathsApi& LogPathsApi::system() {
    // Never destroyed: threads may log while the process ends.
    static LogPathsApi& api = *new WindowsLogPathsApi;
    return api;
}

} // namespace orbelantine
