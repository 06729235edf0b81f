#include "tools/virtual_phone/log/Utf8.h"

#include <boost/locale/utf.hpp>

#include <iterator>

namespace orbelantine::phone {

namespace utf = boost::locale::utf;
using Utf8 = utf::utf_traits<char>;

std::u32string decodeUtf8(std::string_view text) {
    std::u32string characters;
    for (auto at = text.begin(); at != text.end();) {
        const utf::code_point decoded = Utf8::decode(at, text.end());
        const bool valid = decoded != utf::illegal && decoded != utf::incomplete;
        characters += valid ? char32_t{decoded} : kReplacementCharacter;
    }
    return characters;
}

void appendUtf8(std::string& text, char32_t character) {
    Utf8::encode(character, std::back_inserter(text));
}

} // namespace orbelantine::phone
