#include "core/common/log/LogPaths.h"

#include "core/common/log/Log.h"

#include <boost/nowide/convert.hpp>

#include <cstddef>

namespace orbelantine {

namespace {

bool namesFolder(const std::wstring& argument) {
    return argument == L"-L" || argument == L"-l" || argument == L"/L" || argument == L"/l";
}

void endWithSeparator(std::wstring& folder, wchar_t separator) {
    if (!folder.ends_with(separator))
        folder += separator;
}

std::wstring productDataFolder(LogPathsApi& api) {
    std::wstring folder = api.localDataFolder();
    if (folder.empty())
        return folder;
    endWithSeparator(folder, api.separator());
    return folder + L"Kessa" + api.separator() + L"KessaBrevon";
}

} // namespace

std::wstring folderArgument(const std::vector<std::wstring>& arguments) {
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i)
        if (namesFolder(arguments[i]))
            return arguments[i + 1];
    return {};
}

std::wstring resolveLogFolder(LogPathsApi& api, const LogPathWishes& wishes) {
    std::wstring folder = folderArgument(api.commandLine());
    if (!folder.empty())
        folder = api.expandEnvironment(folder);
    if (folder.empty())
        folder = wishes.folder;
    // A developer's log, at trace or debug level, stays out of the user's data.
    if (folder.empty() && wishes.level > kLogDebug)
        folder = productDataFolder(api);
    if (folder.empty())
        folder = api.temporaryFolder();
    api.createFolder(folder);
    endWithSeparator(folder, api.separator());
    return folder;
}

std::wstring resolveLogName(LogPathsApi& api, const LogPathWishes& wishes) {
    return boost::nowide::widen(wishes.prefix) + L"lumiport." +
           toWide(toPath(api.modulePath()).stem()) + boost::nowide::widen(wishes.suffix) + L".log";
}

std::filesystem::path toPath(const std::wstring& text) {
    const std::string utf8 = boost::nowide::narrow(text);
    return std::u8string(utf8.begin(), utf8.end());
}

std::wstring toWide(const std::filesystem::path& path) {
    const std::u8string utf8 = path.u8string();
    return boost::nowide::widen(std::string(utf8.begin(), utf8.end()));
}

} // namespace orbelantine
