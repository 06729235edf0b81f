#pragma once

#include "bluetooth/radio/NameSpaceApi.h"
#include "bluetooth/radio/linux/SdpRecord.h"

#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace orbelantine {

/// Publishes service records through BlueZ, which looks none up. The worker "BlueZRecordsIoThread"
/// lives as long as any is published. A call waits for BlueZ's answers, for each 5 seconds at the
/// most.
class BlueZNameSpace final : public NameSpaceApi {
  public:
    /// To the system bus if `bus` is empty, else to the one of that address.
    explicit BlueZNameSpace(std::string bus = "");
    BlueZNameSpace(const BlueZNameSpace&) = delete;
    BlueZNameSpace& operator=(const BlueZNameSpace&) = delete;
    /// Withdraws what is published.
    ~BlueZNameSpace() override;

    [[nodiscard]] Result wsaLookupServiceBegin(const QuerySet& query, std::uint32_t flags,
                                               Handle& lookup) override;
    [[nodiscard]] Result wsaLookupServiceNext(Handle lookup, std::uint32_t flags,
                                              std::uint32_t& size, QuerySet* query) override;
    void wsaLookupServiceEnd(Handle lookup) override;
    /// A record that can't be read gives 13, a machine without D-Bus or BlueZ 10050, and a handle
    /// that isn't published 87.
    [[nodiscard]] Result wsaSetService(const QuerySet& query, Operation operation) override;
    [[nodiscard]] Error wsaGetLastError() override;

  private:
    class Worker;

    [[nodiscard]] Error setService(const Blob& blob, Operation operation);
    [[nodiscard]] Error publish(const bluez::SdpRecord& record, Handle& handle);
    [[nodiscard]] Error withdraw(Handle handle);
    void endIdleWorker();

    const std::string mBus;
    std::mutex mMutex;
    Handle mLast = kNull;
    std::set<Handle> mPublished;
    // Null while nothing is published.
    std::unique_ptr<Worker> mWorker;
};

} // namespace orbelantine
