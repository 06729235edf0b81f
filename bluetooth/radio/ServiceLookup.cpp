#include "bluetooth/radio/ServiceLookup.h"

#include "bluetooth/ApiHandle.h"
#include "core/common/errors/ApiCategory.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"
#include "core/common/run/WorkerThread.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace orbelantine {

namespace {

constexpr std::uint32_t kLookupFlags = NameSpaceApi::kLookupResService |
                                       NameSpaceApi::kLookupFlushCache |
                                       NameSpaceApi::kLookupReturnAll;

using Lookup = ApiHandle<NameSpaceApi, &NameSpaceApi::wsaLookupServiceEnd>;

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};

/// With room behind it.
using QueryMemory = std::unique_ptr<NameSpaceApi::QuerySet, FreeMemory>;

/// Keeps pointers to the text and the class. Null where there is no memory.
QueryMemory initQuerySet(const std::wstring& address, std::uint32_t size,
                         const Guid& serviceClass) {
    const std::size_t room = std::max<std::size_t>(size, sizeof(NameSpaceApi::QuerySet));
    QueryMemory query(static_cast<NameSpaceApi::QuerySet*>(std::calloc(1, room)));
    if (!query) {
        ORB_LOG(kLogError, "%s() not enough memory (size = %d)", static_cast<int>(size));
        return query;
    }
    query->size = sizeof(NameSpaceApi::QuerySet);
    query->nameSpace = NameSpaceApi::kBluetooth;
    query->context = address.c_str();
    query->serviceClass = &serviceClass;
    return query;
}

/// False if the answer has no address.
bool copyAnswer(const NameSpaceApi::QuerySet& answer, SockaddrBth& service,
                ServiceLookup::Record& record) {
    if (!answer.csAddrs || !answer.csAddrs->remote.address)
        return false;
    std::memcpy(&service, answer.csAddrs->remote.address, sizeof(service));
    if (const NameSpaceApi::Blob* blob = answer.blob; blob && blob->data)
        record.assign(blob->data, blob->data + blob->size);
    return true;
}

error_code lookupError(NameSpaceApi::Error error, const char* call) {
    return {static_cast<int>(error), apiCategory(call)};
}

/// Sets a service by its record, or by its handle where the record is empty.
NameSpaceApi::Result setService(NameSpaceApi& api, NameSpaceApi::Operation operation,
                                const ServiceLookup::Record& record, NameSpaceApi::Handle& handle) {
    const std::uint32_t version = NameSpaceApi::kSdpVersion;
    NameSpaceApi::SetService head{};
    head.sdpVersion = &version;
    head.recordHandle = &handle;
    head.recordLength = static_cast<std::uint32_t>(record.size());

    constexpr std::size_t kHeadSize = offsetof(NameSpaceApi::SetService, record);
    ServiceLookup::Record bytes(std::max(kHeadSize + record.size(), sizeof(head)));
    std::memcpy(bytes.data(), &head, kHeadSize);
    std::ranges::copy(record, bytes.begin() + kHeadSize);

    const NameSpaceApi::Blob blob{static_cast<std::uint32_t>(bytes.size()), bytes.data()};
    NameSpaceApi::QuerySet query{};
    query.size = sizeof(query);
    query.nameSpace = NameSpaceApi::kBluetooth;
    query.blob = &blob;
    return api.wsaSetService(query, operation);
}

} // namespace

ServiceLookup::ServiceLookup(NameSpaceApi& api)
    : mApi(api)
    , mInterrupt(boost::make_shared<WindowsEvent>(true, false)) {}

ServiceLookup::~ServiceLookup() {
    stop();
}

void ServiceLookup::start(const CMacAddress& address, const Guid& serviceClass, Callback callback) {
    mInterrupt->reset();
    const std::lock_guard starting(mStarting);
    mThread = startWorkerThread([this, address, serviceClass, callback = std::move(callback)] {
        // Its callback may stop it, which takes the thread.
        { const std::lock_guard started(mStarting); }
        SockaddrBth service{};
        Record record;
        const error_code ec = lookupService(address, serviceClass, service, record);
        if (callback && !mInterrupt->wait(0))
            callback(ec, service, record);
    });
}

void ServiceLookup::stop() {
    mInterrupt->set();
    if (mThread.joinable())
        mThread.join();
}

error_code ServiceLookup::lookupService(const CMacAddress& address, const Guid& serviceClass,
                                        SockaddrBth& service, Record& record) {
    const std::wstring context = address.getStdStringAddress();
    std::uint32_t size = sizeof(NameSpaceApi::QuerySet);
    QueryMemory query = initQuerySet(context, size, serviceClass);
    if (!query)
        return genericError(generic::kNotEnoughMemory);

    Lookup lookup(mApi);
    if (mApi.wsaLookupServiceBegin(*query, kLookupFlags, lookup.out()) ||
        lookup.get() == Lookup::kNone) {
        const auto error = mApi.wsaGetLastError();
        ORB_LOG(kLogError, "%s() WSALookupServiceBegin error %d", static_cast<int>(error));
        return lookupError(error, "BluetoothServiceLookup:WSALookupServiceBegin");
    }
    while (!mInterrupt->wait(0)) {
        if (!mApi.wsaLookupServiceNext(lookup.get(), kLookupFlags, size, query.get())) {
            if (!copyAnswer(*query, service, record))
                ORB_LOG(kLogError, "%s() Buffer of query set is NULL!!!");
            return {};
        }
        const auto error = mApi.wsaGetLastError();
        if (error == win32::kWsaNoMore)
            return {};
        if (error != win32::kWsaFault) {
            ORB_LOG(kLogError, "%s() WSALookupServiceNext error %d", static_cast<int>(error));
            return lookupError(error, "BluetoothServiceLookup:WSALookupServiceNext");
        }
        query.reset();
        if (size > 0)
            query = initQuerySet(context, size, serviceClass);
        if (!query) {
            ORB_LOG(kLogError, "%s() not enough memory (size = %d)", static_cast<int>(size));
            return genericError(generic::kNotEnoughMemory);
        }
    }
    ORB_LOG(kLogError, "%s() thread interrupted");
    return {};
}

NameSpaceApi::Handle publishBluetoothService(const ServiceLookup::Record& record,
                                             NameSpaceApi& api) {
    NameSpaceApi::Handle handle = NameSpaceApi::kNull;
    if (setService(api, NameSpaceApi::Operation::Register, record, handle) !=
        NameSpaceApi::kFailure)
        return handle;
    ORB_LOG_TEXT(kLogError, "Error publishing bluetooth service (err: %d)",
                 static_cast<int>(api.wsaGetLastError()));
    return NameSpaceApi::kNull;
}

NameSpaceApi::Result withdrawBluetoothService(NameSpaceApi::Handle record, NameSpaceApi& api) {
    return setService(api, NameSpaceApi::Operation::Delete, {}, record);
}

} // namespace orbelantine
