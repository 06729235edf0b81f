#pragma once

#include <cstdint>
#include <string>

namespace orbelantine {

/// The files of a pipe in its folder. A name of up to 64 letters, digits and ".", "_" or "-" is
/// that of its files; any other character stands there as % and its two hexadecimal digits, and
/// what gets longer than that becomes # and the SHA-256 of the name. Unlike on Windows, names that
/// differ in case are different names.
struct PipeFiles {
    std::string socket;
    std::string lock;
    /// The socket before it listens.
    std::string unready;
};

/// From "\\.\pipe\LOCAL\" and the pipe's name: 206 where the text has more than 256 characters, 87
/// where it begins otherwise.
[[nodiscard]] std::uint32_t filesOfPipe(const std::string& text, PipeFiles& files);

} // namespace orbelantine
