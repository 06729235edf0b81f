#include "bluetooth/radio/NameSpaceApi.h"

// clang-format off
#include <winsock2.h>
#include <windows.h>
#include <ws2bth.h>
// clang-format on

#include "core/common/errors/ErrorCode.h"

#include <bit>

namespace orbelantine {

namespace {

static_assert(sizeof(SockaddrBth) == sizeof(SOCKADDR_BTH));
static_assert(offsetof(SockaddrBth, port) == offsetof(SOCKADDR_BTH, port));
static_assert(sizeof(NameSpaceApi::CsAddrInfo) == sizeof(CSADDR_INFO));
static_assert(offsetof(NameSpaceApi::CsAddrInfo, remote) == offsetof(CSADDR_INFO, RemoteAddr));
static_assert(sizeof(NameSpaceApi::Blob) == sizeof(BLOB));
static_assert(sizeof(NameSpaceApi::QuerySet) == sizeof(WSAQUERYSETW));
static_assert(offsetof(NameSpaceApi::QuerySet, serviceClass) ==
              offsetof(WSAQUERYSETW, lpServiceClassId));
static_assert(offsetof(NameSpaceApi::QuerySet, nameSpace) == offsetof(WSAQUERYSETW, dwNameSpace));
static_assert(offsetof(NameSpaceApi::QuerySet, context) == offsetof(WSAQUERYSETW, lpszContext));
static_assert(offsetof(NameSpaceApi::QuerySet, csAddrs) == offsetof(WSAQUERYSETW, lpcsaBuffer));
static_assert(offsetof(NameSpaceApi::QuerySet, blob) == offsetof(WSAQUERYSETW, lpBlob));
static_assert(sizeof(NameSpaceApi::SetService) == sizeof(BTH_SET_SERVICE));
static_assert(offsetof(NameSpaceApi::SetService, recordLength) ==
              offsetof(BTH_SET_SERVICE, ulRecordLength));
static_assert(NameSpaceApi::kFailure == SOCKET_ERROR);
static_assert(NameSpaceApi::kBluetooth == NS_BTH);
static_assert(NameSpaceApi::kLookupResService == LUP_RES_SERVICE);
static_assert(NameSpaceApi::kLookupFlushCache == LUP_FLUSHCACHE);
static_assert(NameSpaceApi::kLookupReturnAll == LUP_RETURN_ALL);
static_assert(NameSpaceApi::kSdpVersion == BTH_SDP_VERSION);
static_assert(static_cast<int>(NameSpaceApi::Operation::Register) == RNRSERVICE_REGISTER);
static_assert(static_cast<int>(NameSpaceApi::Operation::Delete) == RNRSERVICE_DELETE);
static_assert(win32::kWsaFault == WSAEFAULT && win32::kWsaNoMore == WSA_E_NO_MORE);
static_assert(win32::kWsaOperationNotSupported == WSAEOPNOTSUPP);

HANDLE lookupHandle(NameSpaceApi::Handle lookup) {
    return reinterpret_cast<HANDLE>(lookup);
}

class WindowsNameSpaceApi final : public NameSpaceApi {
  public:
    WindowsNameSpaceApi() {
        // Winsock counts its starts. It stays for as long as the process.
        WSADATA unused;
        WSAStartup(MAKEWORD(2, 2), &unused);
    }

    Result wsaLookupServiceBegin(const QuerySet& query, std::uint32_t flags,
                                 Handle& lookup) override {
        auto native = std::bit_cast<WSAQUERYSETW>(query);
        HANDLE begun = nullptr;
        const Result result = WSALookupServiceBeginW(&native, flags, &begun);
        if (begun)
            lookup = reinterpret_cast<Handle>(begun);
        return result;
    }

    Result wsaLookupServiceNext(Handle lookup, std::uint32_t flags, std::uint32_t& size,
                                QuerySet* query) override {
        DWORD length = size;
        const Result result = WSALookupServiceNextW(lookupHandle(lookup), flags, &length,
                                                    reinterpret_cast<WSAQUERYSETW*>(query));
        size = length;
        return result;
    }

    void wsaLookupServiceEnd(Handle lookup) override { WSALookupServiceEnd(lookupHandle(lookup)); }

    Result wsaSetService(const QuerySet& query, Operation operation) override {
        auto native = std::bit_cast<WSAQUERYSETW>(query);
        return WSASetServiceW(&native, static_cast<WSAESETSERVICEOP>(operation), 0);
    }

    Error wsaGetLastError() override { return static_cast<Error>(WSAGetLastError()); }
};

} // namespace

NameSpaceApi& NameSpaceApi::system() {
    static WindowsNameSpaceApi api;
    return api;
}

} // namespace orbelantine
