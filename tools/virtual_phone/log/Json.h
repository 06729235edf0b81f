#pragma once

#include <string>
#include <string_view>
#include <type_traits>

namespace orbelantine::phone {

/// Quotes and escapes; what isn't UTF-8 becomes the replacement character.
[[nodiscard]] std::string jsonText(std::string_view text);

/// The shortest text that reads back as the same number, which is finite.
[[nodiscard]] std::string jsonNumber(double number);

/// One JSON object, written as it is built: keys keep their order and are not checked for repeats.
class JsonObject {
  public:
    /// A value is a bool, a number, a text, an object, or a range of those.
    template <typename T>
    JsonObject& add(std::string_view key, const T& value) {
        mMembers += mMembers.empty() ? "" : ",";
        mMembers += jsonText(key) + ":" + valueOf(value);
        return *this;
    }

    [[nodiscard]] std::string text() const { return "{" + mMembers + "}"; }

  private:
    template <typename T>
    static std::string valueOf(const T& value) {
        if constexpr (std::is_same_v<T, bool>)
            return value ? "true" : "false";
        else if constexpr (std::is_integral_v<T>)
            return std::to_string(value);
        else if constexpr (std::is_floating_point_v<T>)
            return jsonNumber(value);
        else if constexpr (std::is_convertible_v<const T&, std::string_view>)
            return jsonText(value);
        else if constexpr (std::is_same_v<T, JsonObject>)
            return value.text();
        else
            return arrayOf(value);
    }

    template <typename Range>
    static std::string arrayOf(const Range& range) {
        std::string items;
        for (const auto& item : range)
            items += (items.empty() ? "" : ",") + valueOf(item);
        return "[" + items + "]";
    }

    std::string mMembers;
};

} // namespace orbelantine::phone
