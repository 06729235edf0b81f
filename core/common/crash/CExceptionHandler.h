#pragma once

#include "core/common/crash/CrashApi.h"
#include "core/common/crash/CrashLog.h"
#include "core/common/crash/CrashStackApi.h"
#include "core/common/crash/ExceptionPointers.h"

#include <cstdint>
#include <string>
#include <vector>

namespace orbelantine {

/// Records the process's crashes: each becomes a numbered section of a profile file in the user's
/// temporary folder, named after the host's program, and lines of the log. The newest are kept, and
/// the host is given each once. At most one object of a process is set.
///
/// SetHandler and UnsetHandler are for the main thread, at the start and the end; GetLatestCrashes
/// is not for two threads at once. The virtual operations run on the thread that records a crash.
class CExceptionHandler {
  public:
    /// `takeAction`: whether the process ends once a crash is recorded; otherwise whoever handled
    /// it before does so. `unused` is accepted and not used.
    explicit CExceptionHandler(bool unused = false, bool takeAction = true);
    CExceptionHandler(bool takeAction, CrashApi& api, CrashStackApi& stackApi);
    /// As UnsetHandler.
    virtual ~CExceptionHandler();
    CExceptionHandler(const CExceptionHandler&) = delete;
    CExceptionHandler& operator=(const CExceptionHandler&) = delete;

    /// Records crashes from now on. False if an object set on another thread does so already, or if
    /// the system refuses; the log tells.
    bool SetHandler();
    /// Crashes go where they went before SetHandler. Nothing happens if it isn't set.
    void UnsetHandler();
    /// The crashes recorded since the last call, by this process or earlier ones of the same
    /// program: for each its lines "key=value", then an empty text. What has been handed out isn't
    /// again.
    std::vector<std::wstring> GetLatestCrashes();
    /// The file version of the host's program, such as "1.2.3.4"; empty where the file has none.
    std::wstring GetVersion();
    /// Stores 1 at address 0, so that the recording can be tried out. The process ends.
    void Crash();

    /// Records a crash. 1 if the process is to end now, 0 if the handlers before this one have it.
    virtual int UnhandledExceptionFilter(const char* source, const ExceptionPointers* pointers);
    /// The name of a new crash's section, after the oldest ones have been removed.
    virtual std::wstring GetNextCrashSection();
    virtual void WriteExceptionDetails(const wchar_t* section, const ExceptionPointers* pointers);
    virtual void WriteStackTrace(const wchar_t* section, const void* crashAddress,
                                 const void* context);
    /// Ends the process with exit code 1.
    virtual void KillProcess();
    virtual void InitDumpFilePath();

  private:
    [[nodiscard]] std::int64_t general(const wchar_t* key);
    void setGeneral(const wchar_t* key, const std::wstring& value);
    [[nodiscard]] bool makeFolder();
    void writeCalls(const wchar_t* section);
    void writeWalk(const wchar_t* section, const void* context);
    void writeFrame(const wchar_t* section, const char* kind, int index,
                    CrashStackApi::Address address);
    void appendSection(const std::wstring& section, std::vector<std::wstring>& crashes);

    bool mHandlerSet = false;
    std::wstring mFile;
    const bool mTakeAction;
    CrashApi::Mutex mMutex = nullptr;
    CrashApi& mApi;
    CrashStackApi& mStackApi;
    CrashLog mLog;
};

} // namespace orbelantine
