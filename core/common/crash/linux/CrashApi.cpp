#include "core/common/crash/CrashApi.h"

#include "core/common/crash/linux/ProfileFile.h"
#include "core/common/crash/linux/ThreadMutex.h"
#include "core/common/errors/linux/LinuxErrors.h"

#include <boost/nowide/convert.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace orbelantine {

namespace {

constexpr std::uint32_t kErrorAccessDenied = 5;
constexpr std::uint32_t kErrorAlreadyExists = 183;

std::string narrowed(const wchar_t* text) {
    return boost::nowide::narrow(text);
}

/// The user's own below /tmp, where every user may make files.
std::string ownTemporaryFolder() {
    return "/tmp/orbelantine-" + std::to_string(geteuid());
}

bool isOwn(const std::string& folder) {
    struct stat status {};

    return lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid();
}

/// As a shell would take it: an argument with blanks stands in quotes.
std::string asArgument(const std::string& argument) {
    const bool plain = !argument.empty() && argument.find_first_of(" \t\n") == std::string::npos;
    return plain ? argument : "\"" + argument + "\"";
}

class LinuxCrashApi final : public CrashApi {
  public:
    [[nodiscard]] std::wstring temporaryFolder() override {
        const char* const chosen = std::getenv("TMPDIR");
        const bool usable = chosen != nullptr && *chosen == '/';
        return boost::nowide::widen(usable ? chosen : ownTemporaryFolder());
    }

    [[nodiscard]] wchar_t separator() const override { return L'/'; }

    [[nodiscard]] Error createFolder(const std::wstring& folder) override {
        const std::filesystem::path path = boost::nowide::narrow(folder);
        const std::string own = ownTemporaryFolder();
        if (path == own + "/" || path == own) {
            const bool made = mkdir(own.c_str(), S_IRWXU) == 0;
            if (made)
                return 0;
            return isOwn(own) ? kErrorAlreadyExists : kErrorAccessDenied;
        }
        std::error_code error;
        const bool made = std::filesystem::create_directories(path, error);
        if (error)
            return windowsError(error.value());
        return made ? 0 : kErrorAlreadyExists;
    }

    [[nodiscard]] std::wstring executablePath() override {
        std::error_code error;
        const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
        return error ? std::wstring() : boost::nowide::widen(path.native());
    }

    // Programs of Linux have no version block.
    [[nodiscard]] std::optional<FileVersion> executableVersion() override { return std::nullopt; }

    [[nodiscard]] std::wstring commandLine() override {
        std::ifstream file("/proc/self/cmdline", std::ios::binary);
        std::string line;
        for (std::string argument; std::getline(file, argument, '\0');)
            line += (line.empty() ? "" : " ") + asArgument(argument);
        return boost::nowide::widen(line);
    }

    [[nodiscard]] std::uint32_t processId() override {
        return static_cast<std::uint32_t>(getpid());
    }

    [[nodiscard]] std::uint64_t tickCount() override {
        timespec now{};
        clock_gettime(CLOCK_BOOTTIME, &now);
        return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
               static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
    }

    [[nodiscard]] LocalTime localTime() override {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        std::tm parts{};
        localtime_r(&now.tv_sec, &parts);
        const auto number = [](auto value) { return static_cast<unsigned>(value); };
        return {number(parts.tm_year + 1900), number(parts.tm_mon + 1), number(parts.tm_mday),
                number(parts.tm_hour),        number(parts.tm_min),     number(parts.tm_sec),
                number(now.tv_nsec / 1000000)};
    }

    [[nodiscard]] Mutex createMutex(const std::wstring& name, Error& error) override {
        error = 0;
        return new std::shared_ptr<ThreadMutex>(ThreadMutex::named(name));
    }

    [[nodiscard]] Error tryMutex(Mutex mutex) override { return held(mutex)->tryLock(); }

    void releaseMutex(Mutex mutex) override { held(mutex)->unlock(); }

    void closeMutex(Mutex mutex) override { delete &held(mutex); }

    [[nodiscard]] std::uint32_t profileInteger(const wchar_t* section, const wchar_t* key,
                                               const std::wstring& file) override {
        const auto value =
            readProfile(boost::nowide::narrow(file)).value(narrowed(section), narrowed(key));
        return value ? profileNumber(*value) : 0;
    }

    [[nodiscard]] std::vector<std::wstring> profileSection(const wchar_t* section,
                                                           const std::wstring& file) override {
        std::vector<std::wstring> lines;
        std::size_t room = kSectionSize - 1;
        for (const std::string& line :
             readProfile(boost::nowide::narrow(file)).lines(narrowed(section))) {
            if (room <= 1)
                break;
            lines.push_back(boost::nowide::widen(line).substr(0, room - 1));
            room -= lines.back().size() + 1;
        }
        return lines;
    }

    bool writeProfile(const wchar_t* section, const wchar_t* key, const wchar_t* value,
                      const std::wstring& file) override {
        // Nothing waits in memory.
        if (section == nullptr)
            return true;
        return changeProfile(boost::nowide::narrow(file), [&](ProfileText& profile) {
            if (key == nullptr)
                profile.removeSection(narrowed(section));
            else if (value == nullptr)
                profile.removeKey(narrowed(section), narrowed(key));
            else
                profile.set(narrowed(section), narrowed(key), narrowed(value));
        });
    }

    void flushStreams() override { (void)std::fflush(nullptr); }

    void terminateProcess(unsigned exitCode) override { _exit(static_cast<int>(exitCode)); }

  private:
    static std::shared_ptr<ThreadMutex>& held(Mutex mutex) {
        return *static_cast<std::shared_ptr<ThreadMutex>*>(mutex);
    }
};

} // namespace

CrashApi& CrashApi::system() {
    // Never destroyed: a process may crash while it ends.
    static CrashApi& api = *new LinuxCrashApi;
    return api;
}

} // namespace orbelantine
