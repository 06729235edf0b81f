#include "core/common/protect/linux/LinuxProtectionApi.h"

#include <openssl/evp.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

namespace orbelantine {

namespace {

constexpr ProtectionApi::Error kInvalidData = 13;
constexpr ProtectionApi::Error kInternalError = 1359;

// A blob: header, nonce, what is protected, tag. The header is protected from changes as well.
using Header = std::array<unsigned char, 6>;
constexpr Header kUserHeader = {'O', 'R', 'B', 'P', 1, 0};
constexpr Header kMachineHeader = {'O', 'R', 'B', 'P', 1, ProtectionApi::kLocalMachine};
constexpr std::size_t kNonceSize = 12;
constexpr std::size_t kTagSize = 16;
constexpr std::size_t kAround = std::tuple_size_v<Header> + kNonceSize + kTagSize;
constexpr std::size_t kLargest = std::numeric_limits<int>::max() - kAround;

using Cipher =
    std::unique_ptr<EVP_CIPHER_CTX,
                    decltype([](EVP_CIPHER_CTX* cipher) { EVP_CIPHER_CTX_free(cipher); })>;

/// Where the parts of a blob begin.
struct Parts {
    explicit Parts(std::size_t blobSize)
        : contentSize(static_cast<int>(blobSize - kAround)) {}

    std::size_t nonce = std::tuple_size_v<Header>;
    std::size_t content = nonce + kNonceSize;
    int contentSize;

    [[nodiscard]] std::size_t tag() const {
        return content + static_cast<std::size_t>(contentSize);
    }
};

bool begin(EVP_CIPHER_CTX* cipher, const KeyFile::Key& key, const unsigned char* blob, bool seal) {
    int ignored = 0;
    const auto header = static_cast<int>(std::tuple_size_v<Header>);
    const Parts parts(kAround);
    return EVP_CipherInit_ex(cipher, EVP_aes_256_gcm(), nullptr, key.data(), blob + parts.nonce,
                             seal ? 1 : 0) == 1 &&
           EVP_CipherUpdate(cipher, nullptr, &ignored, blob, header) == 1;
}

bool seal(const KeyFile::Key& key, const ProtectionApi::Bytes& plain, ProtectionApi::Bytes& blob) {
    const Parts parts(blob.size());
    const Cipher cipher(EVP_CIPHER_CTX_new());
    int size = 0;
    return cipher != nullptr && begin(cipher.get(), key, blob.data(), true) &&
           EVP_CipherUpdate(cipher.get(), blob.data() + parts.content, &size, plain.data(),
                            parts.contentSize) == 1 &&
           EVP_CipherFinal_ex(cipher.get(), blob.data() + parts.tag(), &size) == 1 &&
           EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_GCM_GET_TAG, kTagSize,
                               blob.data() + parts.tag()) == 1;
}

bool unseal(const KeyFile::Key& key, const ProtectionApi::Bytes& blob,
            ProtectionApi::Bytes& plain) {
    const Parts parts(blob.size());
    const Cipher cipher(EVP_CIPHER_CTX_new());
    ProtectionApi::Bytes tag(blob.end() - kTagSize, blob.end());
    int size = 0;
    return cipher != nullptr && begin(cipher.get(), key, blob.data(), false) &&
           EVP_CipherUpdate(cipher.get(), plain.data(), &size, blob.data() + parts.content,
                            parts.contentSize) == 1 &&
           EVP_CIPHER_CTX_ctrl(cipher.get(), EVP_CTRL_GCM_SET_TAG, kTagSize, tag.data()) == 1 &&
           EVP_CipherFinal_ex(cipher.get(), plain.data() + size, &size) == 1;
}

} // namespace

LinuxProtectionApi::LinuxProtectionApi(const std::string& userFolder, std::string machineFolder)
    : mMachineFolder(std::move(machineFolder))
    , mUserKey(userFolder, S_IRUSR | S_IWUSR, geteuid())
    , mMachineKey(mMachineFolder, S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH, 0) {}

ProtectionApi::Error LinuxProtectionApi::protect(const Bytes& plain, std::uint32_t flags,
                                                 Bytes& blob) {
    const bool machine = (flags & kLocalMachine) != 0;
    KeyFile::Key key{};
    if (const Error error = (machine ? mMachineKey : mUserKey).readOrMake(key); error != 0)
        return error;
    if (plain.size() > kLargest)
        return kInvalidData;
    Bytes sealed(plain.size() + kAround);
    const Header& header = machine ? kMachineHeader : kUserHeader;
    std::copy(header.begin(), header.end(), sealed.begin());
    if (getrandom(sealed.data() + header.size(), kNonceSize, 0) != kNonceSize ||
        !seal(key, plain, sealed))
        return kInternalError;
    blob = std::move(sealed);
    return 0;
}

ProtectionApi::Error LinuxProtectionApi::unprotect(const Bytes& blob, Bytes& plain) {
    if (blob.size() < kAround || blob.size() > kLargest)
        return kInvalidData;
    const bool machine = std::equal(kMachineHeader.begin(), kMachineHeader.end(), blob.begin());
    if (!machine && !std::equal(kUserHeader.begin(), kUserHeader.end(), blob.begin()))
        return kInvalidData;
    KeyFile::Key key{};
    if (const Error error = (machine ? mMachineKey : mUserKey).read(key); error != 0)
        return error;
    // The buffer of an empty content is still one to point into.
    Bytes unsealed(blob.size() - kAround + 1);
    if (!unseal(key, blob, unsealed))
        return kInvalidData;
    unsealed.pop_back();
    plain = std::move(unsealed);
    return 0;
}

std::uint32_t LinuxProtectionApi::sessionId() {
    struct stat status {};

    const bool chosen = lstat(mMachineFolder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                        status.st_uid == 0 && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
    return chosen && geteuid() == 0 ? 0 : 1;
}

void LinuxProtectionApi::copy(unsigned char* to, const char* from, std::size_t size) {
    if (from != nullptr) {
        std::memcpy(to, from, size);
        return;
    }
    errno = EINVAL;
    std::memset(to, 0, size);
}

std::string userKeyFolder() {
    const char* const data = std::getenv("XDG_DATA_HOME");
    const char* const home = std::getenv("HOME");
    const std::string folder = data != nullptr && *data == '/'
                                   ? std::string(data)
                                   : std::string(home != nullptr ? home : "") + "/.local/share";
    return folder + "/Kessa/KessaBrevon";
}

ProtectionApi& ProtectionApi::system() {
    static LinuxProtectionApi api(userKeyFolder(), kMachineKeyFolder);
    return api;
}

} // namespace orbelantine
