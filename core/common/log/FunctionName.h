#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace orbelantine {

namespace detail {

// What the compilers write for a name space without a name; it is no part of the qualified name.
inline constexpr std::string_view kAnonymous[] = {"(anonymous namespace)::", "{anonymous}::"};

constexpr std::size_t anonymousLength(std::string_view text) {
    for (const std::string_view anonymous : kAnonymous)
        if (text.starts_with(anonymous))
            return anonymous.size();
    return 0;
}

} // namespace detail

/// The qualified name, such as "orbelantine::HIDDeviceClient::connect", within the compiler's
/// spelling of a function's signature (__PRETTY_FUNCTION__), without template arguments, which no
/// two compilers spell alike. A lambda gives the name of the function around it. The result is
/// null-terminated.
template <std::size_t N>
consteval std::array<char, N> qualifiedName(const char (&signature)[N]) {
    // The name ends at the first parenthesis outside template arguments and begins after the last
    // space before it.
    const std::string_view text(signature, N - 1);
    std::array<char, N> name{};
    std::size_t length = 0;
    int depth = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (const std::size_t skipped = detail::anonymousLength(text.substr(i))) {
            i += skipped;
            continue;
        }
        const char c = text[i++];
        if (c == '(' && depth == 0)
            break;
        depth += (c == '<') - (c == '>');
        if (depth > 0 || c == '>')
            continue;
        const bool startsName = c == ' ' || c == '*' || c == '&';
        length = startsName ? 0 : length + 1;
        if (!startsName)
            name[length - 1] = c;
    }
    for (std::size_t i = length; i < N; ++i)
        name[i] = '\0';
    return name;
}

} // namespace orbelantine

/// The qualified name of the enclosing function; valid to the end of the full expression.
#define ORB_FUNCTION_NAME (::orbelantine::qualifiedName(__PRETTY_FUNCTION__).data())
