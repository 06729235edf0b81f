// What is written while the process crashes. A step that fails is left out, and the next one runs.
#include "core/common/crash/CExceptionHandler.h"
#include "core/common/crash/ClrCodes.h"
#include "core/common/crash/CrashText.h"
#include "core/common/crash/SymbolLine.h"

#include <boost/nowide/convert.hpp>

#include <algorithm>
#include <utility>

namespace orbelantine {

namespace {

constexpr CrashApi::Error kAlreadyExists = 183;
constexpr std::int64_t kDefaultMax = 100;
constexpr std::int64_t kLargestMax = 1000;
constexpr std::size_t kCapturedFrames = 128;
// More than a reader of the section gets to see.
constexpr int kWalkedFrames = 256;

// When the library was loaded.
const std::uint64_t loadTicks = CrashApi::system().tickCount();

/// A value that ends neither its line nor the record.
std::wstring oneLine(std::wstring text) {
    std::replace_if(
        text.begin(), text.end(), [](wchar_t c) { return c == L'\n' || c == L'\r'; }, L' ');
    return text;
}

std::wstring timeText(const CrashApi::LocalTime& t) {
    return wideCrashText("%02u/%02u/%02u %02u:%02u:%02u.%03u", t.year, t.month, t.day, t.hour,
                         t.minute, t.second, t.millisecond);
}

std::wstring hexText(std::uint32_t value) {
    return wideCrashText("0x%08x", value);
}

CrashStackApi::Address numberOf(const void* address) {
    return reinterpret_cast<std::uintptr_t>(address);
}

} // namespace

int CExceptionHandler::UnhandledExceptionFilter(const char* source,
                                                const ExceptionPointers* pointers) {
    const CrashLog::Scope scope(mLog);
    const ExceptionRecord* record = pointers != nullptr ? pointers->record : nullptr;
    if (makeFolder()) {
        const std::wstring section = GetNextCrashSection();
        mLog.add("UnhandledExceptionFilter from %s - PROCESS CRASHED!", source);
        if (!section.empty()) {
            WriteExceptionDetails(section.c_str(), pointers);
            WriteStackTrace(section.c_str(), record != nullptr ? record->address : nullptr,
                            pointers != nullptr ? pointers->context : nullptr);
        }
        setGeneral(L"last", section);
        mApi.writeProfile(nullptr, nullptr, nullptr, mFile);
    }
    mApi.flushStreams();
    if (!mTakeAction)
        return 0;
    if (record != nullptr && isClrCode(record->code)) {
        mLog.add("%s() CLR exception continue search for an exception handler", ORB_FUNCTION_NAME);
        return 0;
    }
    mLog.add("%s() Terminating process", ORB_FUNCTION_NAME);
    return 1;
}

bool CExceptionHandler::makeFolder() {
    const auto slash = mFile.rfind(mApi.separator());
    const std::wstring folder =
        slash == std::wstring::npos ? std::wstring() : mFile.substr(0, slash + 1);
    const CrashApi::Error error = mApi.createFolder(folder);
    if (error == 0 || error == kAlreadyExists)
        return true;
    mLog.add("%s() Cannot verify dump file path %s",
             "orbelantine::CExceptionHandler::UnhandledExceptionFilter",
             boost::nowide::narrow(mFile).c_str());
    return false;
}

std::wstring CExceptionHandler::GetNextCrashSection() {
    std::int64_t first = general(L"first");
    if (first == 0)
        setGeneral(L"first", L"1");
    const std::int64_t last = general(L"last");
    const std::int64_t max = general(L"max");
    if (max < 1 || max > kLargestMax)
        setGeneral(L"max", std::to_wstring(kDefaultMax));
    if (last == 0)
        return L"1";
    // A file may hold any numbers; far behind the newest there are no sections.
    first = std::max(first, last - std::max<std::int64_t>(max, 0) - kLargestMax);
    while (first <= last && last - first >= max - 1) {
        mApi.writeProfile(std::to_wstring(first).c_str(), nullptr, nullptr, mFile);
        setGeneral(L"first", std::to_wstring(++first));
    }
    return std::to_wstring(last + 1);
}

void CExceptionHandler::WriteExceptionDetails(const wchar_t* section,
                                              const ExceptionPointers* pointers) {
    const CrashLog::Scope scope(mLog);
    const char* const function = "orbelantine::CExceptionHandler::WriteExceptionDetails";
    const auto write = [&](const wchar_t* key, const std::wstring& value) {
        mApi.writeProfile(section, key, value.c_str(), mFile);
    };
    const auto tell = [&](const char* what, const std::wstring& value) {
        mLog.add("(EXCEPTION DETAILS!!!) %s: %s = %s", function, what,
                 boost::nowide::narrow(value).c_str());
    };
    const auto writeAndTell = [&](const wchar_t* key, const char* what, const std::wstring& value) {
        write(key, value);
        tell(what, value);
    };

    const std::uint64_t ticks = mApi.tickCount();
    write(L"Time", timeText(mApi.localTime()));
    write(L"Ticks", std::to_wstring(ticks));
    write(L"AppTicks", std::to_wstring(ticks - loadTicks));
    writeAndTell(L"Version", "Version", GetVersion());
    writeAndTell(L"CommandLine", "Command line", oneLine(mApi.commandLine()));
    writeAndTell(L"ProcessId", "Process ID", std::to_wstring(mApi.processId()));
    if (pointers == nullptr || pointers->record == nullptr) {
        mLog.add("%s: No exception pointers", function);
        return;
    }
    const ExceptionRecord& record = *pointers->record;
    writeAndTell(L"ExceptionCode", "Exception code", hexText(record.code));
    writeAndTell(L"ExceptionFlags", "Exception flags", hexText(record.flags));
    writeAndTell(L"ExceptionAddress", "Exception address",
                 L"0x" + addressText(numberOf(record.address)));
}

void CExceptionHandler::WriteStackTrace(const wchar_t* section, const void* crashAddress,
                                        const void* context) {
    const CrashLog::Scope scope(mLog);
    mStackApi.begin();
    if (crashAddress == nullptr) {
        mLog.add("(STACK TRACE!!!) %s: No crash address available", ORB_FUNCTION_NAME);
    } else {
        const std::wstring line = symbolLine(mStackApi, numberOf(crashAddress));
        mApi.writeProfile(section, L"ExceptionAddressSymbolInfo", line.c_str(), mFile);
        mLog.add("(STACK TRACE!!!) %s: Address symbol info: %s", ORB_FUNCTION_NAME,
                 boost::nowide::narrow(line).c_str());
    }
    if (context == nullptr)
        writeCalls(section);
    else
        writeWalk(section, context);
    mStackApi.end();
}

void CExceptionHandler::writeCalls(const wchar_t* section) {
    const auto frames = mStackApi.captureBackTrace(kCapturedFrames);
    for (std::size_t i = 0; i < frames.size(); ++i)
        writeFrame(section, "(STACK TRACE!!!)", static_cast<int>(frames.size() - i - 1), frames[i]);
}

void CExceptionHandler::writeWalk(const wchar_t* section, const void* context) {
    int index = 0;
    mStackApi.walk(context, [&](CrashStackApi::Address counter, CrashStackApi::Address caller) {
        if (counter != 0)
            writeFrame(section, "(CONTEXT STACK TRACE!!!)", index, counter);
        return ++index < kWalkedFrames && caller != 0;
    });
}

void CExceptionHandler::writeFrame(const wchar_t* section, const char* kind, int index,
                                   CrashStackApi::Address address) {
    const std::wstring line = symbolLine(mStackApi, address);
    mApi.writeProfile(section, wideCrashText("StackTrace%02i", index).c_str(), line.c_str(), mFile);
    mLog.add("%s %s: %02i: %s", kind, "orbelantine::CExceptionHandler::WriteStackTrace", index,
             boost::nowide::narrow(line).c_str());
}

} // namespace orbelantine
