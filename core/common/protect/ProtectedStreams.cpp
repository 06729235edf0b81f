#include "core/common/protect/ProtectedStreams.h"

#include "core/common/log/Log.h"
#include "core/common/log/LogPaths.h"

#include <algorithm>
#include <limits>

namespace orbelantine {

namespace {

constexpr ProtectionApi::Error kNoBlob = 13;
// The system counts in 32 bits. A folder that could be opened may tell any size.
constexpr std::streamoff kLargestBlob = std::numeric_limits<std::int32_t>::max();

/// The process's, asked for by its first cofstream.
std::uint32_t ownSessionId() {
    static const std::uint32_t id = ProtectionApi::system().sessionId();
    return id;
}

std::streamsize sizeOf(const ProtectionApi::Bytes& bytes) {
    return static_cast<std::streamsize>(bytes.size());
}

int loggedSize(const ProtectionApi::Bytes& bytes) {
    return static_cast<int>(bytes.size());
}

} // namespace

cifstream::cifstream(const std::wstring& path, std::ios::openmode mode, ProtectionApi& api)
    : std::ifstream(toPath(path), mode | std::ios::binary)
    , mApi(api) {
    if (is_open() && !decrypt())
        setstate(std::ios::badbit);
}

bool cifstream::decrypt() {
    seekg(0, std::ios::end);
    const std::streamoff size = tellg();
    if (size < 1)
        return true;
    ProtectionApi::Bytes blob;
    ProtectionApi::Bytes plain;
    ProtectionApi::Error error = kNoBlob;
    if (size <= kLargestBlob) {
        seekg(0);
        blob.resize(static_cast<std::size_t>(size));
        read(reinterpret_cast<char*>(blob.data()), size);
        error = mApi.unprotect(blob, plain);
    }
    if (error != 0) {
        ORB_LOG(kLogError, "%s() Failed to decrypt %d bytes. Error = %d",
                static_cast<int>(std::min(size, kLargestBlob)), static_cast<int>(error));
        return false;
    }
    mPlain.sputn(reinterpret_cast<const char*>(plain.data()), sizeOf(plain));
    std::ios::rdbuf(&mPlain);
    ORB_LOG(kLogDebug, "%s() Read %d decrypted bytes for %d encrypted", loggedSize(plain),
            loggedSize(blob));
    return true;
}

cofstream::cofstream(const std::wstring& path)
    : cofstream(path, ProtectionApi::system(), ownSessionId()) {}

cofstream::cofstream(const std::wstring& path, ProtectionApi& api, std::uint32_t sessionId)
    : std::ofstream(toPath(path), std::ios::out | std::ios::binary)
    , mApi(api)
    , mFlags(sessionId == 0 ? ProtectionApi::kLocalMachine : 0) {}

cofstream& cofstream::write(const char* data, std::streamsize size) {
    if (size < 1)
        return *this;
    const std::lock_guard lock(mMutex);
    const std::size_t before = mContent.size();
    mContent.resize(before + static_cast<std::size_t>(size));
    mApi.copy(mContent.data() + before, data, static_cast<std::size_t>(size));

    ProtectionApi::Bytes blob;
    if (const ProtectionApi::Error error = mApi.protect(mContent, mFlags, blob); error != 0) {
        ORB_LOG(kLogError, "%s() Failed to encrypt %d bytes. Error = %d", loggedSize(mContent),
                static_cast<int>(error));
        setstate(std::ios::badbit);
        return *this;
    }
    seekp(0);
    std::ofstream::write(reinterpret_cast<const char*>(blob.data()), sizeOf(blob));
    ORB_LOG(kLogDebug, "%s() Wrote %d encrypted bytes for %d decrypted (%d new)", loggedSize(blob),
            loggedSize(mContent), static_cast<int>(size));
    return *this;
}

} // namespace orbelantine
