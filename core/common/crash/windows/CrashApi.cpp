#include "core/common/crash/CrashApi.h"

// clang-format off
#include <windows.h>
#include <shlobj.h>
// clang-format on

#include <array>
#include <cstdio>

namespace orbelantine {

namespace {

std::uint64_t half(DWORD both, unsigned shift) {
    return (both >> shift) & 0xffff;
}

class WindowsCrashApi final : public CrashApi {
  public:
    [[nodiscard]] std::wstring temporaryFolder() override {
        std::array<wchar_t, MAX_PATH + 1> path{};
        const DWORD size = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
        return size < path.size() ? std::wstring(path.data(), size) : std::wstring();
    }

    [[nodiscard]] wchar_t separator() const override { return L'\\'; }

    [[nodiscard]] Error createFolder(const std::wstring& folder) override {
        return static_cast<Error>(SHCreateDirectory(nullptr, folder.c_str()));
    }

    [[nodiscard]] std::wstring executablePath() override {
        std::wstring path(kLongestPath, L'\0');
        path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
        return path;
    }

    [[nodiscard]] std::optional<FileVersion> executableVersion() override {
        const std::wstring path = executablePath();
        DWORD ignored = 0;
        std::vector<char> block(GetFileVersionInfoSizeW(path.c_str(), &ignored));
        if (block.empty() || GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()),
                                                 block.data()) == FALSE)
            return std::nullopt;
        void* found = nullptr;
        UINT size = 0;
        const BOOL has = VerQueryValueW(block.data(), L"\\", &found, &size);
        if (has == FALSE || size < sizeof(VS_FIXEDFILEINFO))
            return FileVersion{};
        const auto& record = *static_cast<const VS_FIXEDFILEINFO*>(found);
        return FileVersion{half(record.dwFileVersionMS, 16), half(record.dwFileVersionMS, 0),
                           half(record.dwFileVersionLS, 16), half(record.dwFileVersionLS, 0)};
    }

    [[nodiscard]] std::wstring commandLine() override { return GetCommandLineW(); }

    [[nodiscard]] std::uint32_t processId() override { return GetCurrentProcessId(); }

    [[nodiscard]] std::uint64_t tickCount() override { return GetTickCount64(); }

    [[nodiscard]] LocalTime localTime() override {
        SYSTEMTIME now{};
        GetLocalTime(&now);
        return {now.wYear,   now.wMonth,  now.wDay,         now.wHour,
                now.wMinute, now.wSecond, now.wMilliseconds};
    }

    [[nodiscard]] Mutex createMutex(const std::wstring& name, Error& error) override {
        const HANDLE mutex = CreateMutexW(nullptr, FALSE, name.c_str());
        error = mutex == nullptr ? GetLastError() : 0;
        return mutex;
    }

    [[nodiscard]] Error tryMutex(Mutex mutex) override { return WaitForSingleObject(mutex, 0); }

    void releaseMutex(Mutex mutex) override { (void)ReleaseMutex(mutex); }

    void closeMutex(Mutex mutex) override { (void)CloseHandle(mutex); }

    [[nodiscard]] std::uint32_t profileInteger(const wchar_t* section, const wchar_t* key,
                                               const std::wstring& file) override {
        return GetPrivateProfileIntW(section, key, 0, file.c_str());
    }

    [[nodiscard]] std::vector<std::wstring> profileSection(const wchar_t* section,
                                                           const std::wstring& file) override {
        static std::array<wchar_t, kSectionSize> buffer{};
        buffer = {};
        (void)GetPrivateProfileSectionW(section, buffer.data(), kSectionSize, file.c_str());
        std::vector<std::wstring> lines;
        for (const wchar_t* line = buffer.data(); *line != L'\0'; line += lines.back().size() + 1)
            lines.emplace_back(line);
        return lines;
    }

    bool writeProfile(const wchar_t* section, const wchar_t* key, const wchar_t* value,
                      const std::wstring& file) override {
        return WritePrivateProfileStringW(section, key, value, file.c_str()) != FALSE;
    }

    void flushStreams() override { (void)_flushall(); }

    void terminateProcess(unsigned exitCode) override {
        (void)TerminateProcess(GetCurrentProcess(), exitCode);
    }

  private:
    static constexpr DWORD kLongestPath = 32768;
};

} // namespace

CrashApi& CrashApi::system() {
    // Never destroyed: a process may crash while it ends.
    static CrashApi& api = *new WindowsCrashApi;
    return api;
}

} // namespace orbelantine
