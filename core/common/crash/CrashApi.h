#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orbelantine {

/// The system calls by which a crash record is made and kept. Errors are the system's, in the
/// Windows numbering, 0 for success. No operation throws but for want of memory.
class CrashApi {
  public:
    using Error = std::uint32_t;
    using Mutex = void*;

    struct LocalTime {
        unsigned year, month, day, hour, minute, second, millisecond;
    };

    /// The fixed version record of a program's file; zeros where its version block has none.
    using FileVersion = std::array<std::uint64_t, 4>;

    virtual ~CrashApi() = default;

    /// GetTempPathW: the user's own folder of temporary files.
    [[nodiscard]] virtual std::wstring temporaryFolder() = 0;
    [[nodiscard]] virtual wchar_t separator() const = 0;
    /// SHCreateDirectory: makes the folder; 183 if it was there.
    [[nodiscard]] virtual Error createFolder(const std::wstring& folder) = 0;
    /// GetModuleFileNameW of the host's program.
    [[nodiscard]] virtual std::wstring executablePath() = 0;
    /// Nothing where the host's program has no version block.
    [[nodiscard]] virtual std::optional<FileVersion> executableVersion() = 0;
    [[nodiscard]] virtual std::wstring commandLine() = 0;
    [[nodiscard]] virtual std::uint32_t processId() = 0;
    /// Milliseconds since the computer was started.
    [[nodiscard]] virtual std::uint64_t tickCount() = 0;
    [[nodiscard]] virtual LocalTime localTime() = 0;

    /// CreateMutexW, not owned; null on failure, told by `error`. One name is one mutex in the
    /// process.
    [[nodiscard]] virtual Mutex createMutex(const std::wstring& name, Error& error) = 0;
    /// WaitForSingleObject without waiting: 258 while another thread owns it.
    [[nodiscard]] virtual Error tryMutex(Mutex mutex) = 0;
    virtual void releaseMutex(Mutex mutex) = 0;
    virtual void closeMutex(Mutex mutex) = 0;

    /// GetPrivateProfileIntW: decimal, or hexadecimal after "0x"; 0 if there is no such key.
    [[nodiscard]] virtual std::uint32_t profileInteger(const wchar_t* section, const wchar_t* key,
                                                       const std::wstring& file) = 0;
    /// GetPrivateProfileSectionW: the section's lines as they stand in the file, together at most
    /// kSectionSize characters, a null after each and one after all included.
    [[nodiscard]] virtual std::vector<std::wstring> profileSection(const wchar_t* section,
                                                                   const std::wstring& file) = 0;
    /// WritePrivateProfileStringW: a null value removes the key, a null key the section, and a
    /// null section writes what waits in memory.
    virtual bool writeProfile(const wchar_t* section, const wchar_t* key, const wchar_t* value,
                              const std::wstring& file) = 0;

    /// _flushall
    virtual void flushStreams() = 0;
    /// Ends the process at once.
    virtual void terminateProcess(unsigned exitCode) = 0;

    /// The process's real system; lives until the process ends.
    static CrashApi& system();

    static constexpr std::size_t kSectionSize = 32767;
};

} // namespace orbelantine
