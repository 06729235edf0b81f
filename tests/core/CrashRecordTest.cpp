#include "core/common/crash/CExceptionHandler.h"
#include "core/common/crash/ProfileText.h"
#include "tests/support/CapturedLog.h"

#include <boost/nowide/convert.hpp>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>
#include <utility>

namespace orbelantine::test {
namespace {

using boost::nowide::narrow;
using boost::nowide::widen;

/// A computer whose profile file is a text in memory.
class FakeCrashApi final : public CrashApi {
  public:
    std::wstring temporaryFolder() override { return L"C:\\temp"; }

    wchar_t separator() const override { return L'\\'; }

    Error createFolder(const std::wstring& folder) override {
        EXPECT_EQ(folder, L"C:\\temp\\");
        return folderError;
    }

    std::wstring executablePath() override { return L"D:\\host\\Host.v2.exe"; }

    std::optional<FileVersion> executableVersion() override { return version; }

    std::wstring commandLine() override { return L"Host.exe\n--quiet"; }

    std::uint32_t processId() override { return 0x4d2; }

    std::uint64_t tickCount() override { return std::uint64_t{1} << 40; }

    LocalTime localTime() override { return {2026, 3, 4, 5, 6, 7, 8}; }

    Mutex createMutex(const std::wstring& name, Error& error) override {
        EXPECT_EQ(name, L"Orbelantine:ExceptionHandler:Mutex:0x4d2");
        error = mutexError;
        return mutexError == 0 ? this : nullptr;
    }

    Error tryMutex(Mutex /*mutex*/) override { return waitResult; }

    void releaseMutex(Mutex /*mutex*/) override { ++released; }

    void closeMutex(Mutex /*mutex*/) override { ++closed; }

    std::uint32_t profileInteger(const wchar_t* section, const wchar_t* key,
                                 const std::wstring& path) override {
        EXPECT_EQ(path, L"C:\\temp\\Host.v2.dmpini");
        return profileNumber(file.value(narrow(section), narrow(key)).value_or(""));
    }

    std::vector<std::wstring> profileSection(const wchar_t* section,
                                             const std::wstring& /*path*/) override {
        std::vector<std::wstring> lines;
        for (const std::string& line : file.lines(narrow(section)))
            lines.push_back(widen(line));
        return lines;
    }

    bool writeProfile(const wchar_t* section, const wchar_t* key, const wchar_t* value,
                      const std::wstring& /*path*/) override {
        if (section != nullptr && key == nullptr)
            file.removeSection(narrow(section));
        else if (section != nullptr)
            file.set(narrow(section), narrow(key), narrow(value));
        return true;
    }

    void flushStreams() override { ++flushed; }

    void terminateProcess(unsigned exitCode) override { ended = exitCode; }

    ProfileText file{""};
    std::optional<FileVersion> version = FileVersion{1, 2, 3, 4};
    Error folderError = 183;
    Error mutexError = 0;
    Error waitResult = 0;
    int released = 0;
    int closed = 0;
    int flushed = 0;
    unsigned ended = 0;
};

/// Frame 1 has all that can be known, 2 no line, 3 only its module, others nothing.
class FakeStackApi final : public CrashStackApi {
  public:
    void begin() override {}

    void end() override {}

    std::optional<Module> moduleOf(Address address) override {
        return address <= 0x1003 ? std::optional(Module{L"host", 0x1000}) : std::nullopt;
    }

    std::optional<std::wstring> symbolOf(Address address) override {
        return address <= 0x1002 ? std::optional<std::wstring>(symbol) : std::nullopt;
    }

    std::optional<Line> lineOf(Address address) override {
        return address <= 0x1001 ? std::optional(Line{L"a.cpp", 7}) : std::nullopt;
    }

    std::vector<Address> captureBackTrace(std::size_t limit) override {
        EXPECT_EQ(limit, 128U);
        return {0x1001, 0x2000};
    }

    void walk(const void* context, const Visitor& visit) override {
        EXPECT_EQ(context, this);
        const Address frames[] = {0x1002, 0, 0x1003, 0, 0x1001};
        const Address returns[] = {1, 1, 1, 0, 1};
        for (std::size_t i = 0; i < std::size(frames) && visit(frames[i], returns[i]); ++i) {
        }
    }

    std::wstring symbol = L"run";
};

struct CrashRecord : testing::Test {
    int crash(std::uint32_t code = 0xc0000005) {
        const ExceptionRecord record{code, 1, reinterpret_cast<const void*>(0x1001)};
        const ExceptionPointers pointers{&record, &stack};
        return handler.UnhandledExceptionFilter("test", &pointers);
    }

    std::string general(const char* key) { return api.file.value("general", key).value_or("-"); }

    FakeCrashApi api;
    FakeStackApi stack;
    CExceptionHandler handler{true, api, stack};

    CrashRecord() { handler.InitDumpFilePath(); }
};

TEST_F(CrashRecord, IsASectionWithItsKeysInOrderAndLinesOfTheLog) {
    CapturedLog log(kLogTrace, "orbelantine::CExceptionHandler::");
    EXPECT_EQ(crash(), 1);
    const Texts expected = {
        "Time=2026/03/04 05:06:07.008",
        "Ticks=1099511627776",
        "Version=1.2.3.4",
        "CommandLine=Host.exe --quiet",
        "ProcessId=1234",
        "ExceptionCode=0xc0000005",
        "ExceptionFlags=0x00000001",
        "ExceptionAddress=0x0000000000001001",
        "ExceptionAddressSymbolInfo=host! run - 0x0000000000001001, module offset(base): "
        "0x1(0x1000), a.cpp:7",
        "StackTrace00=host! run - 0x0000000000001002, module offset(base): 0x2(0x1000)",
        "StackTrace02=host! ??? - 0x0000000000001003, module offset(base): 0x3(0x1000)",
    };
    Texts lines = api.file.lines("1");
    ASSERT_EQ(lines.size(), expected.size() + 1);
    EXPECT_TRUE(lines[2].starts_with("AppTicks="));
    lines.erase(lines.begin() + 2);
    EXPECT_EQ(lines, expected);
    const Texts told = log.told();
    ASSERT_EQ(told.size(), 11U);
    EXPECT_EQ(told.front(), "error UnhandledExceptionFilter from test - PROCESS CRASHED!");
    EXPECT_EQ(told[1], "error (EXCEPTION DETAILS!!!) "
                       "orbelantine::CExceptionHandler::WriteExceptionDetails: Version = 1.2.3.4");
    EXPECT_EQ(told[8], "error (CONTEXT STACK TRACE!!!) "
                       "orbelantine::CExceptionHandler::WriteStackTrace: 00: host! run - "
                       "0x0000000000001002, module offset(base): 0x2(0x1000)");
    EXPECT_EQ(told.back(), "error UnhandledExceptionFilter() Terminating process");
    EXPECT_EQ(api.flushed, 1);
}

TEST_F(CrashRecord, WithoutPointersHasTheCallingThreadsFramesCountedDownToTheOutermost) {
    stack.symbol.assign(2000, L'x');
    CapturedLog log(kLogTrace);
    EXPECT_EQ(handler.UnhandledExceptionFilter("test", nullptr), 1);
    const Texts lines = api.file.lines("1");
    ASSERT_EQ(lines.size(), 8U);
    // Cut at 1,023 characters.
    EXPECT_EQ(lines[6].size(), std::string("StackTrace01=").size() + 1023);
    EXPECT_EQ(lines[7], "StackTrace00=??"
                        "?! ??? - 0x0000000000002000");
    EXPECT_EQ(log.missing({"No exception pointers", "No crash address available"}), Texts{});
}

TEST_F(CrashRecord, OfAManagedExceptionIsWrittenButNeitherEndsTheProcessNorIsHandedOut) {
    EXPECT_EQ(crash(0xe0434352), 0);
    EXPECT_EQ(general("last"), "1");
    CapturedLog log(kLogTrace);
    EXPECT_TRUE(handler.GetLatestCrashes().empty());
    EXPECT_EQ(log.missing({"(index = 1). Should have already been sent"}), Texts{});
    CExceptionHandler lenient(false, api, stack);
    lenient.InitDumpFilePath();
    EXPECT_EQ(lenient.UnhandledExceptionFilter("test", nullptr), 0);
}

TEST_F(CrashRecord, SectionsFallAwayFromTheLowEnd) {
    const struct {
        const char *first, *last, *max;
        const char *firstAfter, *lastAfter, *maxAfter;
    } cases[] = {
        {"-", "-", "-", "1", "1", "100"},
        {"1", "2", "2", "2", "3", "2"},
        {"1", "2", "3", "1", "3", "3"},
        {"1", "5", "1", "6", "6", "1"},
        {"1", "5", "0", "6", "6", "100"},
        {"1", "5", "-", "6", "6", "100"},
        {"1", "5", "-3", "6", "6", "100"},
        {"0x2", "0x0f", "10", "7", "16", "10"},
        // Still holds for the crash that finds it.
        {"1", "1000", "1001", "1", "1001", "100"},
        {"1", "1001", "1001", "2", "1002", "100"},
        {"7", "5", "10", "7", "6", "10"},
        {"-2000000000", "2000000000", "10", "1999999992", "2000000001", "10"},
        {"0", "5", "100", "1", "6", "100"},
    };

    for (const auto& each : cases) {
        api.file = ProfileText("");
        const std::pair<const char*, const char*> given[] = {
            {"first", each.first}, {"last", each.last}, {"max", each.max}};
        for (const auto& [key, value] : given)
            if (value != std::string("-"))
                api.file.set("general", key, value);
        (void)crash();
        EXPECT_EQ(general("first"), each.firstAfter) << each.first << each.last << each.max;
        EXPECT_EQ(general("last"), each.lastAfter) << each.first << each.last << each.max;
        EXPECT_EQ(general("max"), each.maxAfter) << each.first << each.last << each.max;
        EXPECT_FALSE(api.file.lines(each.lastAfter).empty());
    }
}

TEST_F(CrashRecord, IsHandedOutOnce) {
    (void)crash();
    (void)crash();
    const auto crashes = handler.GetLatestCrashes();
    ASSERT_EQ(crashes.size(), 26U);
    EXPECT_EQ(crashes[0], L"Time=2026/03/04 05:06:07.008");
    EXPECT_EQ(crashes[12], L"");
    EXPECT_TRUE(handler.GetLatestCrashes().empty());
    EXPECT_EQ(general("nextSend"), "3");
    // What has been rotated away meanwhile is an empty text each; a section without a code is told.
    api.file = ProfileText("[general]\nfirst=4\nlast=5\nnextSend=0x2\n[4]\nTime=now\n[5]\nA=b\n");
    EXPECT_EQ(handler.GetLatestCrashes(),
              (std::vector<std::wstring>{L"", L"", L"Time=now", L"", L"A=b", L""}));
}

TEST_F(CrashRecord, GoesOnlyToTheLogWithoutAFolder) {
    api.folderError = 5;
    CapturedLog log(kLogTrace);
    EXPECT_EQ(crash(), 1);
    EXPECT_EQ(log.told(),
              (Texts{"error orbelantine::CExceptionHandler::UnhandledExceptionFilter() Cannot "
                     "verify dump file path C:\\temp\\Host.v2.dmpini",
                     "error orbelantine::CExceptionHandler::UnhandledExceptionFilter() "
                     "Terminating process"}));
    EXPECT_EQ(api.file.text(), "");
}

TEST_F(CrashRecord, VersionIsEmptyWithoutABlockAndZerosWithoutARecordInIt) {
    EXPECT_EQ(handler.GetVersion(), L"1.2.3.4");
    api.version = CrashApi::FileVersion{};
    EXPECT_EQ(handler.GetVersion(), L"0.0.0.0");
    api.version.reset();
    EXPECT_EQ(handler.GetVersion(), L"");
    handler.KillProcess();
    EXPECT_EQ(api.ended, 1U);
}

TEST_F(CrashRecord, HandlerIsSetOnceAndNotAgainstAnotherOrWithoutAMutex) {
    CapturedLog log(kLogTrace, "orbelantine::CExceptionHandler::SetHandler");
    api.mutexError = 8;
    EXPECT_FALSE(handler.SetHandler());
    EXPECT_EQ(log.told(), Texts{"error : Cannot create mutex. Error = 8"});
    api.mutexError = 0;
    api.waitResult = 258;
    EXPECT_FALSE(handler.SetHandler());
    EXPECT_EQ(log.told(), Texts{"error : Another instance of the object already set the handler"});
    handler.UnsetHandler();
    EXPECT_EQ(api.released, 0);
    api.waitResult = 0x80;
    EXPECT_TRUE(handler.SetHandler());
    EXPECT_TRUE(handler.SetHandler());
    handler.UnsetHandler();
    handler.UnsetHandler();
    EXPECT_EQ(api.released, 1);
    {
        CExceptionHandler another(true, api, stack);
        EXPECT_TRUE(another.SetHandler());
    }
    EXPECT_EQ(api.released, 2);
    EXPECT_EQ(api.closed, 1);
}

TEST(CrashHandler, IsSetByObjectsOfOneThreadUntilItEndsOrLetsGo) {
    CExceptionHandler mine;
    CExceptionHandler second;
    CExceptionHandler others;
    const auto setElsewhere = [&others] {
        bool set = false;
        std::thread([&] { set = others.SetHandler(); }).join();
        return set;
    };
    EXPECT_TRUE(mine.SetHandler());
    EXPECT_TRUE(second.SetHandler());
    EXPECT_FALSE(setElsewhere());
    second.UnsetHandler();
    EXPECT_FALSE(setElsewhere());
    mine.UnsetHandler();
    EXPECT_TRUE(setElsewhere());
    // Whose owner is gone is free.
    EXPECT_TRUE(mine.SetHandler());
}

TEST(ProfileText, HasTheRulesOfWindowsProfileFiles) {
    ProfileText file(
        "junk\r\n; [a]\r\n [ Alpha ] \r\nKey = 1 \r\n;Key=2\nkey=3\n\n[beta]\n[alpha]\nx=1");
    EXPECT_EQ(file.value("ALPHA", "KEY"), "1");
    EXPECT_EQ(file.value("alpha", "x"), std::nullopt);
    EXPECT_EQ(file.lines("alpha"), (Texts{"Key = 1", "key=3"}));
    file.set("alpha", "new", "v");
    file.set("Alpha", "KEY", "");
    file.removeKey("alpha", "key");
    file.set("gamma", "k", "v");
    file.removeSection("beta");
    EXPECT_EQ(file.text(), "junk\r\n; [a]\r\n [ Alpha ] \r\n;Key=2\r\nkey=3\r\nnew=v\r\n\r\n"
                           "[alpha]\r\nx=1\r\n[gamma]\r\nk=v\r\n");
    const std::pair<const char*, std::uint32_t> numbers[] = {
        {"12", 12},      {" +7x", 7}, {"0x1F", 31},      {"", 0},
        {"-3", 0u - 3u}, {"word", 0}, {"4294967297", 1}, {"0xe0434352", 0xe0434352}};
    for (const auto& [text, number] : numbers)
        EXPECT_EQ(profileNumber(text), number) << text;
}

} // namespace
} // namespace orbelantine::test
