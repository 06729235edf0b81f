#include "bluetooth/radio/ServiceLookup.h"

#include "core/common/errors/ApiCategory.h"
#include "core/common/errors/GenericError.h"
#include "tests/bluetooth/FakeNameSpaceApi.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <future>
#include <system_error>

namespace orbelantine::test {
namespace {

using Bytes = ServiceLookup::Record;

constexpr Guid kService = {0x1124, 0, 0x1000, {0x80, 0, 0, 0x80, 0x5F, 0x9B, 0x34, 0xFB}};
constexpr SockaddrBth kFoundAt = {32, 0x001A7DDA7113, kService, 0x11};
const std::string kBegin = "BluetoothServiceLookup:WSALookupServiceBegin";
const std::string kNext = "BluetoothServiceLookup:WSALookupServiceNext";

struct LookupResult {
    error_code ec;
    SockaddrBth service;
    Bytes record;
};

LookupResult lookUp(NameSpaceApi& api) {
    std::promise<LookupResult> result;
    ServiceLookup lookup(api);
    lookup.start(CMacAddress(L"00:1A:7D:DA:71:13"), kService,
                 [&](error_code ec, const SockaddrBth& service, const Bytes& record) {
                     result.set_value({ec, service, record});
                 });
    return result.get_future().get();
}

TEST(ServiceLookup, FirstRecordIsToldWithItsAddressAndTooSmallABufferCostsOneMoreCall) {
    const std::pair<std::optional<Bytes>, bool> cases[] = {
        {Bytes{0x35, 3, 9}, false}, {std::nullopt, false}, {Bytes(3000, 7), true}};

    for (const auto& [record, tooLong] : cases) {
        FakeNameSpaceApi api;
        api.answers = {{0, 120, kFoundAt, record}, {0, 120, SockaddrBth{}, Bytes{1}}};
        if (tooLong)
            api.answers.push_front({10014, 4000, {}, {}});
        const LookupResult found = lookUp(api);
        EXPECT_EQ(found.ec, error_code());
        EXPECT_EQ(std::memcmp(&found.service, &kFoundAt, 30), 0);
        EXPECT_EQ(found.record, record.value_or(Bytes()));
        EXPECT_EQ(api.flags, 0x9FF0u);
        EXPECT_EQ(api.context, L"00:1A:7D:DA:71:13");
        EXPECT_EQ(api.serviceClass, kService);
        const std::vector<std::uint32_t> twice = {120, 4000};
        EXPECT_EQ(api.sizes, tooLong ? twice : std::vector<std::uint32_t>{120});
        EXPECT_EQ(api.open, 0);
    }
}

TEST(ServiceLookup, EachEndWithoutARecordGivesItsCodeAndTellsWhy) {
    using Answer = FakeNameSpaceApi::Answer;

    const struct {
        NameSpaceApi::Error beginError;
        bool givesNoHandle;
        Answer answer;
        error_code expected;
        const char* line;
    } cases[] = {
        {8, false, {}, {8, apiCategory(kBegin)}, "WSALookupServiceBegin error 8"},
        {6, true, {}, {6, apiCategory(kBegin)}, "WSALookupServiceBegin error 6"},
        {0, false, {31, 0, {}, {}}, {31, apiCategory(kNext)}, "WSALookupServiceNext error 31"},
        {0, false, {10110, 0, {}, {}}, {}, nullptr},
        {0, false, {0, 120, {}, Bytes{1}}, {}, "Buffer of query set is NULL!!!"},
        {0, false, {10014, 0, {}, {}}, genericError(12), "not enough memory (size = 0)"},
    };

    for (const auto& [beginError, givesNoHandle, answer, expected, line] : cases) {
        FakeNameSpaceApi api;
        api.beginError = beginError;
        api.givesNoHandle = givesNoHandle;
        api.answers = {answer};
        CapturedLog log(kLogDebug, "orbelantine::ServiceLookup::lookupService() ");
        const LookupResult found = lookUp(api);
        EXPECT_EQ(found.ec, expected) << expected.message();
        EXPECT_EQ(log.told(), line ? Texts{std::string("error ") + line} : Texts());
        EXPECT_EQ(found.record, Bytes());
        EXPECT_EQ(std::uint64_t{found.service.address}, 0u);
        EXPECT_EQ(api.open, 0);
    }
}

TEST(ServiceLookup, StopWaitsForTheCallInProgressAndTheCallbackDoesNotCome) {
    FakeNameSpaceApi api;
    std::promise<void> asked;
    api.onNext = [&] {
        if (api.sizes.empty())
            asked.set_value();
        api.answers = {{10014, 200, {}, {}}};
    };
    std::atomic<bool> called = false;
    ServiceLookup lookup(api);
    CapturedLog log(kLogDebug, "orbelantine::ServiceLookup::");
    lookup.start(CMacAddress(), kService, [&](const auto&...) { called = true; });
    asked.get_future().wait();
    lookup.stop();
    EXPECT_EQ(api.open, 0);
    EXPECT_FALSE(called);
    EXPECT_EQ(log.told(), Texts{"error lookupService() thread interrupted"});

    api.onNext = [] {};
    std::promise<void> again;
    lookup.start(CMacAddress(), kService, [&](const auto&...) { again.set_value(); });
    again.get_future().wait();
}

TEST(ServiceLookup, StopOnTheWorkerIsAFaultOfTheThread) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "the thread sanitiser takes a refused join for one that was made";
#endif
    FakeNameSpaceApi api;
    ServiceLookup lookup(api);
    std::promise<std::error_code> fault;
    lookup.start(CMacAddress(), kService, [&](const auto&...) {
        try {
            lookup.stop();
            fault.set_value({});
        } catch (const std::system_error& e) {
            fault.set_value(e.code());
        }
    });
    EXPECT_EQ(fault.get_future().get(), std::errc::resource_deadlock_would_occur);
}

TEST(ServiceLookup, PublishedRecordIsWithdrawnByItsHandle) {
    FakeNameSpaceApi api;
    const Bytes record(200, 9);
    Bytes published(28);
    published[24] = 200;
    published.insert(published.end(), record.begin(), record.end());
    EXPECT_EQ(publishBluetoothService(record, api), 0x10001);
    EXPECT_EQ(withdrawBluetoothService(0x10001, api), 0);
    const std::vector<FakeNameSpaceApi::Setting> expected = {
        {NameSpaceApi::Operation::Register, 1, 0, published},
        {NameSpaceApi::Operation::Delete, 1, 0x10001, Bytes(29)},
    };
    EXPECT_EQ(api.settings, expected);

    api.setError = 10022;
    CapturedLog log(kLogDebug);
    EXPECT_EQ(publishBluetoothService(record, api), 0);
    EXPECT_EQ(log.told(), Texts{"error Error publishing bluetooth service (err: 10022)"});
    EXPECT_EQ(withdrawBluetoothService(0x10001, api), -1);
}

} // namespace
} // namespace orbelantine::test
