#include "ipc/pipe/CurrentUser.h"

#include "core/common/errors/ErrorCode.h"
#include "core/common/log/Log.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

namespace orbelantine {

namespace {

constexpr std::uint32_t kTokenQuery = 8;

/// The token of this process, open as long as this object lives.
class Token {
  public:
    explicit Token(UserApi& api)
        : mApi(api)
        , mError(api.openProcessToken(kTokenQuery, mHandle)) {}

    ~Token() {
        if (!mError)
            mApi.closeHandle(mHandle);
    }

    Token(const Token&) = delete;
    Token& operator=(const Token&) = delete;

    [[nodiscard]] UserApi::Error error() const { return mError; }

    [[nodiscard]] UserApi::Handle get() const { return mHandle; }

  private:
    UserApi& mApi;
    UserApi::Handle mHandle = 0;
    const UserApi::Error mError;
};

const void* sidWithin(const std::byte* tokenUser) {
    const void* sid = nullptr;
    std::memcpy(&sid, tokenUser, sizeof(sid));
    return sid;
}

} // namespace

std::wstring getCurrentUserSid(UserApi& api, UserApi::Error& error) {
    ORB_TRACED();
    const Token token(api);
    error = token.error();
    if (error) {
        ORB_LOG(kLogError, "%s() OpenProcessToken failed. GetLastError returned: %d", error);
        return {};
    }
    std::uint32_t size = 0;
    error = api.getTokenUser(token.get(), nullptr, 0, size);
    if (error && error != win32::kErrorInsufficientBuffer) {
        ORB_LOG(kLogError, "%s() GetTokenInformation failed. GetLastError returned: %d", error);
        return {};
    }
    const auto tokenUser =
        std::make_unique<std::byte[]>(std::max(std::size_t{size}, sizeof(void*)));
    error = api.getTokenUser(token.get(), tokenUser.get(), size, size);
    if (error) {
        ORB_LOG(kLogError, "%s() 2 GetTokenInformation failed. GetLastError returned: %d.", error);
        return {};
    }
    const void* sid = sidWithin(tokenUser.get());
    if (!api.isValidSid(sid)) {
        error = api.lastError();
        ORB_LOG(kLogError, "%s() The owner SID is invalid.");
        return {};
    }
    wchar_t* text = nullptr;
    error = api.convertSidToStringSid(sid, text);
    if (error) {
        ORB_LOG(kLogError, "%s() Failed converting sid to string.");
        return {};
    }
    std::wstring copy(text);
    api.localFree(text);
    return copy;
}

} // namespace orbelantine
