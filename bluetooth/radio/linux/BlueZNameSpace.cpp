#include "bluetooth/radio/linux/BlueZNameSpace.h"

#include "bluetooth/radio/linux/BlueZErrors.h"
#include "bluetooth/radio/linux/Publication.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"
#include "core/common/run/IoThread.h"

#include <sdbus-c++/sdbus-c++.h>

#include <cstring>
#include <exception>
#include <future>
#include <map>
#include <system_error>
#include <utility>

namespace orbelantine {

using bluez::Publication;

namespace {

using NameSpaceError = NameSpaceApi::Error;

/// As for the backend's worker: a few calls at the most.
constexpr auto kLongestRecordWait = 3 * dbus::kLongestCall;

thread_local NameSpaceError lastNameSpaceError = win32::kErrorSuccess;

NameSpaceApi::Result nameSpaceResult(NameSpaceError error) {
    if (error == win32::kErrorSuccess)
        return 0;
    lastNameSpaceError = error;
    return NameSpaceApi::kFailure;
}

NameSpaceError refusalOf(const sdbus::Error& error) {
    const int number = bluez::errorOf(error.getName()).value();
    if (number == generic::kNetworkDown)
        return win32::kWsaNetworkDown;
    ORB_LOG(kLogError, "%s() RegisterProfile error. Error: %d (%s)", number, error.what());
    return static_cast<NameSpaceError>(number);
}

} // namespace

class BlueZNameSpace::Worker {
  public:
    explicit Worker(std::string bus)
        : mBus(std::move(bus)) {}

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    ~Worker() {
        ask([this] {
            mPublications.clear();
            return win32::kErrorSuccess;
        });
        mThread.stop();
    }

    Error publish(Handle handle, const bluez::SdpRecord& record) {
        return ask([this, handle, record] { return add(handle, record); });
    }

    Error withdraw(Handle handle) {
        return ask([this, handle] {
            mPublications.erase(handle);
            return win32::kErrorSuccess;
        });
    }

    /// One that came too late.
    void forget(Handle handle) {
        mThread.post([this, handle] { mPublications.erase(handle); });
    }

  private:
    /// Waits for the task's end, for the worker's, or too long.
    template <class Task>
    Error ask(Task task) {
        std::promise<Error> answer;
        std::future<Error> result = answer.get_future();
        mThread.post([answer = std::move(answer), task = std::move(task)]() mutable {
            answer.set_value(task());
        });
        if (result.wait_for(kLongestRecordWait) == std::future_status::timeout)
            return win32::kErrorTimeout;
        try {
            return result.get();
        } catch (const std::future_error&) {
            return win32::kErrorGenFailure;
        }
    }

    Error add(Handle handle, const bluez::SdpRecord& record) {
        auto publication = connect(record);
        if (!publication)
            return win32::kWsaNetworkDown;
        try {
            publication->publish();
        } catch (const sdbus::Error& error) {
            return refusalOf(error);
        }
        mPublications[handle] = std::move(publication);
        return win32::kErrorSuccess;
    }

    /// Null where there is no D-Bus.
    std::unique_ptr<Publication> connect(const bluez::SdpRecord& record) {
        try {
            return std::make_unique<Publication>(mBus, mThread.ioService(), record);
        } catch (const std::exception& e) {
            ORB_LOG(kLogInfo, "%s() there is no Bluetooth here: D-Bus can't be used: %s", e.what());
            return nullptr;
        }
    }

    const std::string mBus;
    IoThread mThread{"BlueZRecordsIoThread"};
    // The worker's own, and it goes there.
    std::map<Handle, std::unique_ptr<Publication>> mPublications;
};

BlueZNameSpace::BlueZNameSpace(std::string bus)
    : mBus(std::move(bus)) {}

BlueZNameSpace::~BlueZNameSpace() = default;

NameSpaceApi::Result BlueZNameSpace::wsaLookupServiceBegin(const QuerySet&, std::uint32_t,
                                                           Handle&) {
    return nameSpaceResult(win32::kWsaOperationNotSupported);
}

NameSpaceApi::Result BlueZNameSpace::wsaLookupServiceNext(Handle, std::uint32_t, std::uint32_t&,
                                                          QuerySet*) {
    return nameSpaceResult(win32::kWsaOperationNotSupported);
}

void BlueZNameSpace::wsaLookupServiceEnd(Handle) {}

NameSpaceApi::Result BlueZNameSpace::wsaSetService(const QuerySet& query, Operation operation) {
    return nameSpaceResult(query.blob ? setService(*query.blob, operation) : win32::kWsaFault);
}

NameSpaceApi::Error BlueZNameSpace::wsaGetLastError() {
    return lastNameSpaceError;
}

NameSpaceApi::Error BlueZNameSpace::setService(const Blob& blob, Operation operation) {
    constexpr std::size_t kHeadSize = offsetof(SetService, record);
    SetService head{};
    if (!blob.data || blob.size < kHeadSize)
        return win32::kWsaFault;
    std::memcpy(&head, blob.data, kHeadSize);
    if (!head.recordHandle || head.recordLength > blob.size - kHeadSize)
        return win32::kWsaFault;
    if (operation == Operation::Delete)
        return withdraw(*head.recordHandle);
    const auto record = bluez::parseSdpRecord({blob.data + kHeadSize, head.recordLength});
    return record ? publish(*record, *head.recordHandle) : win32::kErrorInvalidData;
}

NameSpaceApi::Error BlueZNameSpace::publish(const bluez::SdpRecord& record, Handle& handle) {
    const std::lock_guard lock(mMutex);
    try {
        if (!mWorker)
            mWorker = std::make_unique<Worker>(mBus);
    } catch (const std::system_error& e) {
        ORB_LOG(kLogError, "%s() there can be no thread: %s", e.what());
        return win32::kErrorNotEnoughMemory;
    }
    const Handle made = ++mLast;
    const Error error = mWorker->publish(made, record);
    if (error == win32::kErrorSuccess) {
        mPublished.insert(made);
        handle = made;
    } else {
        mWorker->forget(made);
        endIdleWorker();
    }
    return error;
}

NameSpaceApi::Error BlueZNameSpace::withdraw(Handle handle) {
    const std::lock_guard lock(mMutex);
    if (mPublished.erase(handle) == 0)
        return win32::kErrorInvalidParameter;
    const Error error = mWorker->withdraw(handle);
    endIdleWorker();
    return error;
}

void BlueZNameSpace::endIdleWorker() {
    if (mPublished.empty())
        mWorker.reset();
}

NameSpaceApi& NameSpaceApi::system() {
    static BlueZNameSpace api;
    return api;
}

} // namespace orbelantine
