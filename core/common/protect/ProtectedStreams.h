#pragma once

#include "core/common/protect/ProtectionApi.h"

#include <boost/asio/streambuf.hpp>

#include <cstdint>
#include <fstream>
#include <mutex>
#include <string>

namespace orbelantine {

/// Reads a file that cofstream has written. The file is one protected blob, read whole and
/// unprotected by the constructor; then all reads are served from memory. A file that isn't a valid
/// blob of this user or machine gives badbit and a line in the log, and nothing to read.
class cifstream : public std::ifstream {
  public:
    /// The file is opened as std::ifstream does, always in binary mode.
    explicit cifstream(const std::wstring& path, std::ios::openmode mode = std::ios::in,
                       ProtectionApi& api = ProtectionApi::system());

    /// Takes the file's content into memory; an empty file is an empty stream. False if it can't be
    /// unprotected.
    bool decrypt();

  private:
    ProtectionApi& mApi;
    boost::asio::streambuf mPlain;
};

/// Writes a file that only the current user can read, or any user of the machine where the process
/// belongs to no user's session. Each write protects all that was written so far, and puts it in
/// the file's place: what it costs grows with the content, and after each the file is whole.
/// Any thread may write.
class cofstream : public std::ofstream {
  public:
    /// Empties the file. failbit if it can't be opened.
    explicit cofstream(const std::wstring& path);
    cofstream(const std::wstring& path, ProtectionApi& api, std::uint32_t sessionId);

    /// badbit if the content can't be protected; the log tells why. A null `data` counts as zeros.
    cofstream& write(const char* data, std::streamsize size);

  private:
    ProtectionApi& mApi;
    const std::uint32_t mFlags;
    std::recursive_mutex mMutex;
    ProtectionApi::Bytes mContent;
};

} // namespace orbelantine
