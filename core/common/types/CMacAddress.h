#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace orbelantine {

/// A Bluetooth device address with its text form "AA:BB:CC:DD:EE:FF". An address without text is
/// empty; "00:00:00:00:00:00" is an address like any other.
class CMacAddress {
  public:
    CMacAddress() = default;
    /// From pairs of hexadecimal digits, each followed by any one separator. Pairs after the end
    /// of the text are 00: "AA" is "AA:00:00:00:00:00". Empty when a pair is something else, and
    /// for null.
    explicit CMacAddress(const wchar_t* text);
    explicit CMacAddress(const std::wstring& text);
    explicit CMacAddress(const std::string& text);
    /// From the low 48 bits, the first byte of the address in bits 40 to 47.
    explicit CMacAddress(std::uint64_t number);
    /// From six bytes; empty for null.
    explicit CMacAddress(const std::uint8_t* bytes);
    CMacAddress(const CMacAddress&) = default;
    CMacAddress& operator=(const CMacAddress&) = default;
    virtual ~CMacAddress() = default;

    [[nodiscard]] std::wstring getStdStringAddress() const { return mText.data(); }

    /// The inverse of the constructor from a number.
    [[nodiscard]] std::uint64_t getUllAddress() const;

    [[nodiscard]] bool isEmpty() const { return mText[0] == 0; }

    [[nodiscard]] bool operator==(const CMacAddress&) const = default;

  private:
    void parse(const wchar_t* text, std::size_t length);
    void buildText();

    std::array<std::uint8_t, 6> mBytes{};
    std::array<wchar_t, 18> mText{};
};

} // namespace orbelantine
