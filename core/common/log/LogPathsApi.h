#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orbelantine {

/// The system calls from which the log's folder and name are made. No operation throws; what the
/// system can't tell is empty.
class LogPathsApi {
  public:
    virtual ~LogPathsApi() = default;
    /// The process's arguments, the program's name first.
    [[nodiscard]] virtual std::vector<std::wstring> commandLine() = 0;
    /// Unknown variables stay as they stand; empty beyond kExpandedSize characters.
    [[nodiscard]] virtual std::wstring expandEnvironment(const std::wstring& text) = 0;
    /// Where programs keep a user's data on this computer alone.
    [[nodiscard]] virtual std::wstring localDataFolder() = 0;
    [[nodiscard]] virtual std::wstring temporaryFolder() = 0;
    /// Makes the folder and those above it.
    virtual void createFolder(const std::wstring& folder) = 0;
    /// The file from which this code was loaded.
    [[nodiscard]] virtual std::wstring modulePath() = 0;
    [[nodiscard]] virtual wchar_t separator() const = 0;

    /// The process's own; lives until the process ends.
    static LogPathsApi& system();

    /// Room for an expanded text, the terminating null included.
    static constexpr std::size_t kExpandedSize = 2048;
};

} // namespace orbelantine
