#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orbelantine {

/// A profile file's text, with the rules of Windows: sections in brackets, lines "key=value",
/// comments after a semicolon; names in either case; of two alike the first counts. What isn't
/// changed stays as it stands.
class ProfileText {
  public:
    explicit ProfileText(std::string_view text);

    /// The value without the blanks around it.
    [[nodiscard]] std::optional<std::string> value(std::string_view section,
                                                   std::string_view key) const;
    /// The section's lines that are neither blank nor comments.
    [[nodiscard]] std::vector<std::string> lines(std::string_view section) const;

    void set(std::string_view section, std::string_view key, std::string_view value);
    void removeKey(std::string_view section, std::string_view key);
    void removeSection(std::string_view section);

    /// With line ends of Windows.
    [[nodiscard]] std::string text() const;

  private:
    using Lines = std::vector<std::string>;

    /// The section's lines, from after its name to before the next one's; empty if it isn't there.
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
        bool found = false;
    };

    [[nodiscard]] Range find(std::string_view section) const;
    [[nodiscard]] std::size_t findKey(const Range& range, std::string_view key) const;

    Lines mLines;
};

/// An integer of a profile: decimal with a sign, or hexadecimal after "0x", up to the first
/// character that is none of its digits; 0 for none. Larger numbers lose their upper bits.
[[nodiscard]] std::uint32_t profileNumber(std::string_view value);

} // namespace orbelantine
