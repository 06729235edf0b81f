#pragma once

#include "bluetooth/Guid.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace orbelantine {

/// SOCKADDR_BTH.
#pragma pack(push, 1)

struct SockaddrBth {
    std::uint16_t family;
    std::uint64_t address;
    Guid serviceClass;
    std::uint32_t port;
};

#pragma pack(pop)

static_assert(sizeof(SockaddrBth) == 30);

/// The calls of Winsock's name space providers, through which Bluetooth services are looked up and
/// published, one operation for each. An operation returns 0, or -1 with the reason in
/// wsaGetLastError. Any thread may call. On Linux lookups fail with 10045, and records are
/// published through BlueZ.
class NameSpaceApi {
  public:
    using Error = std::uint32_t;
    using Handle = std::intptr_t;
    using Result = std::int32_t;

    static constexpr Handle kNull = 0;
    static constexpr Result kFailure = -1;
    static constexpr std::uint32_t kBluetooth = 16;
    static constexpr std::uint32_t kLookupResService = 0x8000;
    static constexpr std::uint32_t kLookupFlushCache = 0x1000;
    static constexpr std::uint32_t kLookupReturnAll = 0xFF0;
    static constexpr std::uint32_t kSdpVersion = 1;

    /// WSAESETSERVICEOP.
    enum class Operation : std::uint32_t { Register = 0, Delete = 2 };

    /// SOCKET_ADDRESS.
    struct SocketAddress {
        const void* address;
        std::int32_t length;
    };

    /// CSADDR_INFO.
    struct CsAddrInfo {
        SocketAddress local;
        SocketAddress remote;
        std::int32_t socketType;
        std::int32_t protocol;
    };

    static_assert(sizeof(CsAddrInfo) == 40);

    /// BLOB.
    struct Blob {
        std::uint32_t size;
        std::uint8_t* data;
    };

    static_assert(sizeof(Blob) == 16);

    /// WSAQUERYSETW; what its members point at may lie behind it.
    struct QuerySet {
        std::uint32_t size;
        const wchar_t* serviceInstanceName;
        const Guid* serviceClass;
        const void* version;
        const wchar_t* comment;
        std::uint32_t nameSpace;
        const Guid* provider;
        const wchar_t* context;
        std::uint32_t protocolCount;
        const void* protocols;
        const wchar_t* query;
        std::uint32_t csAddrCount;
        const CsAddrInfo* csAddrs;
        std::uint32_t outputFlags;
        const Blob* blob;
    };

    static_assert(sizeof(QuerySet) == 120);

    /// BTH_SET_SERVICE; `record` goes on to its end.
#pragma pack(push, 1)

    struct SetService {
        const std::uint32_t* sdpVersion;
        Handle* recordHandle;
        std::uint32_t deviceClassBits;
        std::array<std::uint32_t, 5> reserved;
        std::uint32_t recordLength;
        std::uint8_t record[1];
    };

#pragma pack(pop)

    static_assert(sizeof(SetService) == 45 && offsetof(SetService, record) == 44);

    virtual ~NameSpaceApi() = default;

    /// `lookup` is left alone where there is none.
    [[nodiscard]] virtual Result wsaLookupServiceBegin(const QuerySet& query, std::uint32_t flags,
                                                       Handle& lookup) = 0;
    /// `query` has room for `size` bytes; where that is too little, `size` is what it takes.
    [[nodiscard]] virtual Result wsaLookupServiceNext(Handle lookup, std::uint32_t flags,
                                                      std::uint32_t& size, QuerySet* query) = 0;
    virtual void wsaLookupServiceEnd(Handle lookup) = 0;
    [[nodiscard]] virtual Result wsaSetService(const QuerySet& query, Operation operation) = 0;
    /// Of the calling thread's last failure.
    [[nodiscard]] virtual Error wsaGetLastError() = 0;

    /// The process's real system; lives until the process ends.
    static NameSpaceApi& system();
};

} // namespace orbelantine
