#pragma once

#include "bluetooth/radio/NameSpaceApi.h"
#include "core/common/errors/ErrorCode.h"

#include <cstring>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace orbelantine::test {

/// A name space whose answers are scripted, one for each call of Next; when they are used up there
/// are no more. One thread calls at a time.
class FakeNameSpaceApi final : public NameSpaceApi {
  public:
    using Bytes = std::vector<std::uint8_t>;

    struct Answer {
        Error error = 0;
        /// What the call says that it takes.
        std::uint32_t needed = 0;
        std::optional<SockaddrBth> service;
        std::optional<Bytes> record;
    };

    /// What a service is set with: the blob behind its two pointers, and what those point at.
    using Setting = std::tuple<Operation, std::uint32_t, Handle, Bytes>;

    Error beginError = 0;
    bool givesNoHandle = false;
    Error setError = 0;
    std::deque<Answer> answers;
    /// Runs within each call of Next.
    std::function<void()> onNext = [] {};

    /// What was looked up, and the sizes of the query sets that it took.
    std::uint32_t flags = 0;
    std::wstring context;
    Guid serviceClass{};
    std::vector<std::uint32_t> sizes;
    int open = 0;
    std::vector<Setting> settings;

    Result wsaLookupServiceBegin(const QuerySet& query, std::uint32_t asked,
                                 Handle& lookup) override {
        if (query.size != 120 || query.nameSpace != 16 || query.csAddrCount != 0)
            return fail(win32::kErrorInvalidParameter);
        flags = asked;
        context = query.context;
        serviceClass = *query.serviceClass;
        if (beginError && !givesNoHandle)
            return fail(beginError);
        mError = beginError;
        if (givesNoHandle)
            return 0;
        lookup = 5;
        ++open;
        return 0;
    }

    Result wsaLookupServiceNext(Handle, std::uint32_t asked, std::uint32_t& size,
                                QuerySet* query) override {
        onNext();
        sizes.push_back(size);
        if (asked != flags || query->size != 120 || query->context != context)
            return fail(win32::kErrorInvalidParameter);
        if (answers.empty())
            return fail(win32::kWsaNoMore);
        mAnswer = answers.front();
        answers.pop_front();
        size = mAnswer.needed;
        if (mAnswer.error)
            return fail(mAnswer.error);
        fill(*query);
        return 0;
    }

    void wsaLookupServiceEnd(Handle) override { --open; }

    Result wsaSetService(const QuerySet& query, Operation operation) override {
        if (query.size != 120 || query.nameSpace != 16)
            return fail(win32::kErrorInvalidParameter);
        SetService head;
        std::memcpy(&head, query.blob->data, 44);
        settings.emplace_back(operation, *head.sdpVersion, *head.recordHandle,
                              Bytes(query.blob->data + 16, query.blob->data + query.blob->size));
        if (setError)
            return fail(setError);
        if (operation == Operation::Register)
            *head.recordHandle = 0x10001;
        return 0;
    }

    Error wsaGetLastError() override { return mError; }

  private:
    Result fail(Error error) {
        mError = error;
        return kFailure;
    }

    void fill(QuerySet& query) {
        if (mAnswer.service) {
            mAddresses.remote = {&*mAnswer.service, sizeof(SockaddrBth)};
            query.csAddrs = &mAddresses;
        }
        if (mAnswer.record) {
            mBlob = {static_cast<std::uint32_t>(mAnswer.record->size()), mAnswer.record->data()};
            query.blob = &mBlob;
        }
    }

    Error mError = 0;
    Answer mAnswer;
    CsAddrInfo mAddresses{};
    Blob mBlob{};
};

} // namespace orbelantine::test
