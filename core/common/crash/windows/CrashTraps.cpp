#include "core/common/crash/CrashTraps.h"

#include "core/common/crash/CExceptionHandler.h"
#include "core/common/crash/windows/CrashWatch.h"
#include "core/common/crash/windows/SymbolGuard.h"
#include "core/common/log/Log.h"
#include "core/common/run/AlternateStack.h"

#include <boost/nowide/convert.hpp>
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>
#include <utility>

namespace orbelantine {

namespace {

std::atomic<CExceptionHandler*> current = nullptr;
int installations = 0;
// Written by the thread that sets the traps.
LPTOP_LEVEL_EXCEPTION_FILTER filterBefore = nullptr;
std::terminate_handler terminateBefore = nullptr;
void (*unexpectedBefore)() = nullptr;
std::new_handler newBefore = nullptr;
_purecall_handler pureCallBefore = nullptr;
_invalid_parameter_handler invalidParameterBefore = nullptr;

int recordWith(const char* source, const ExceptionPointers* pointers, bool elsewhere) {
    CExceptionHandler* const handler = current;
    if (handler == nullptr)
        return 1;
    return recordWatched({handler, source, pointers}, elsewhere);
}

void recordCondition(const char* source) {
    (void)recordWith(source, nullptr, false);
}

int recordException(const char* source, const EXCEPTION_POINTERS* raised) {
    if (raised == nullptr || raised->ExceptionRecord == nullptr)
        return recordWith(source, nullptr, false);
    const EXCEPTION_RECORD& told = *raised->ExceptionRecord;
    const ExceptionRecord record{told.ExceptionCode, told.ExceptionFlags, told.ExceptionAddress};
    const ExceptionPointers pointers{&record, raised->ContextRecord};
    const bool withoutRoom = told.ExceptionCode == EXCEPTION_STACK_OVERFLOW;
    const int verdict = recordWith(source, &pointers, withoutRoom);
    // The system's own way to the end takes more room than is left.
    if (withoutRoom && verdict != 0)
        (void)TerminateProcess(GetCurrentProcess(), told.ExceptionCode);
    return verdict;
}

LONG WINAPI onUnhandledException(EXCEPTION_POINTERS* raised) {
    giveUpReadingSymbols();
    if (recordException("CExceptionHandler::_UnhandledExceptionFilter", raised) != 0 ||
        filterBefore == nullptr)
        return EXCEPTION_EXECUTE_HANDLER;
    return filterBefore(raised);
}

void onTerminate() {
    recordCondition("CExceptionHandler::_TerminateHandler");
}

void onUnexpected() {
    recordCondition("CExceptionHandler::_UnexpectedHandler");
}

/// What the run time does without a handler. To come back would make it try again for ever.
void onNoMemory() {
    recordCondition("CExceptionHandler::_NewHandler");
    throw std::bad_alloc();
}

void __cdecl onPureCall() {
    recordCondition("CExceptionHandler::_PureCallHandler");
}

// The run time of today's compilers calls it no more, one that a host brings along may.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

auto setUnexpected(void (*handler)()) {
    return std::set_unexpected(handler);
}

#pragma GCC diagnostic pop

std::string narrowOrEmpty(const wchar_t* text) {
    return text != nullptr ? boost::nowide::narrow(text) : std::string();
}

void __cdecl onInvalidParameter(const wchar_t* expression, const wchar_t* function,
                                const wchar_t* file, unsigned line, std::uintptr_t /*reserved*/) {
    ORB_LOG(kLogError, "%s: Expression: %s, Function: %s, file: %s, line %u, ",
            narrowOrEmpty(expression).c_str(), narrowOrEmpty(function).c_str(),
            narrowOrEmpty(file).c_str(), line);
    recordCondition("CExceptionHandler::_InvalidParameterHandler");
}

} // namespace

CExceptionHandler* crashHandler() {
    return current;
}

bool installCrashTraps(CExceptionHandler& handler) {
    if (installations == 0 && !startCrashWatch())
        return false;
    // Lasts as long as the thread.
    const AlternateStack room;
    current = &handler;
    if (installations++ > 0)
        return true;
    filterBefore = SetUnhandledExceptionFilter(onUnhandledException);
    terminateBefore = std::set_terminate(onTerminate);
    unexpectedBefore = setUnexpected(onUnexpected);
    newBefore = std::set_new_handler(onNoMemory);
    pureCallBefore = _set_purecall_handler(onPureCall);
    invalidParameterBefore = _set_invalid_parameter_handler(onInvalidParameter);
    return true;
}

void removeCrashTraps() {
    if (--installations > 0) {
        current = nullptr;
        return;
    }
    (void)_set_invalid_parameter_handler(std::exchange(invalidParameterBefore, nullptr));
    (void)_set_purecall_handler(std::exchange(pureCallBefore, nullptr));
    (void)std::set_new_handler(std::exchange(newBefore, nullptr));
    (void)setUnexpected(std::exchange(unexpectedBefore, nullptr));
    (void)std::set_terminate(std::exchange(terminateBefore, nullptr));
    (void)SetUnhandledExceptionFilter(std::exchange(filterBefore, nullptr));
    current = nullptr;
    stopCrashWatch();
}

} // namespace orbelantine
