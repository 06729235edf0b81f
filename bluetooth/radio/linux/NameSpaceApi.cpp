#include "bluetooth/radio/NameSpaceApi.h"

#include "core/common/errors/ErrorCode.h"

namespace orbelantine {

namespace {

class NoNameSpace final : public NameSpaceApi {
  public:
    Result wsaLookupServiceBegin(const QuerySet&, std::uint32_t, Handle&) override {
        return kFailure;
    }

    Result wsaLookupServiceNext(Handle, std::uint32_t, std::uint32_t&, QuerySet*) override {
        return kFailure;
    }

    void wsaLookupServiceEnd(Handle) override {}

    Result wsaSetService(const QuerySet&, Operation) override { return kFailure; }

    Error wsaGetLastError() override { return win32::kWsaOperationNotSupported; }
};

} // namespace

NameSpaceApi& NameSpaceApi::system() {
    static NoNameSpace api;
    return api;
}

} // namespace orbelantine
