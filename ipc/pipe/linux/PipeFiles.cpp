#include "ipc/pipe/linux/PipeFiles.h"

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/PipeName.h"

#include <openssl/evp.h>

#include <array>
#include <cstddef>
#include <string_view>

namespace orbelantine {

namespace {

constexpr std::size_t kLongestText = 256;
// With the folder's descriptor before and the ending behind, it fits the address of a socket.
constexpr std::size_t kLongestFileName = 64;

bool isPlain(unsigned char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '.' ||
           c == '_' || c == '-';
}

void appendHex(std::string& text, unsigned char byte) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0xFU];
}

std::string escaped(std::string_view name) {
    std::string text;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain(byte)) {
            text += c;
        } else {
            text += '%';
            appendHex(text, byte);
        }
    }
    return text;
}

bool appendDigest(std::string& text, std::string_view name) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned size = 0;
    if (EVP_Digest(name.data(), name.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        return false;
    for (unsigned i = 0; i < size; ++i)
        appendHex(text, digest[i]);
    return true;
}

} // namespace

std::uint32_t filesOfPipe(const std::string& text, PipeFiles& files) {
    if (text.size() > kLongestText)
        return win32::kErrorFilenameTooLong;
    if (!text.starts_with(kPipeNamePrefix))
        return win32::kErrorInvalidParameter;
    const std::string_view own =
        std::string_view(text).substr(std::string_view(kPipeNamePrefix).size());
    std::string file = escaped(own);
    if (file.size() > kLongestFileName) {
        file = "#";
        if (!appendDigest(file, own))
            return win32::kErrorNotEnoughMemory;
    }
    files = {file + ".socket", file + ".lock", file + ".new"};
    return win32::kErrorSuccess;
}

} // namespace orbelantine
