#pragma once

#include "core/common/log/LogPathsApi.h"

#include <filesystem>
#include <string>
#include <vector>

namespace orbelantine {

/// What the host asked for.
struct LogPathWishes {
    std::wstring folder;
    std::string prefix;
    std::string suffix;
    unsigned level;
};

/// The argument after the first "-L" or "/L", in either case, that has one; else empty.
[[nodiscard]] std::wstring folderArgument(const std::vector<std::wstring>& arguments);

/// The log's folder, made if missing, with a trailing separator. The command line comes first, then
/// the wish, then the user's local data (above debug level only), then the temporary folder.
[[nodiscard]] std::wstring resolveLogFolder(LogPathsApi& api, const LogPathWishes& wishes);

/// "<prefix>lumiport.<stem><suffix>.log", with the stem of this library's own file.
[[nodiscard]] std::wstring resolveLogName(LogPathsApi& api, const LogPathWishes& wishes);

/// Path and wide text, one made of the other whatever the locale.
/// @{
[[nodiscard]] std::filesystem::path toPath(const std::wstring& text);
[[nodiscard]] std::wstring toWide(const std::filesystem::path& path);
/// @}

} // namespace orbelantine
