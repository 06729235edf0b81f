#pragma once

#include "tools/virtual_phone/phone/Phone.h"

#include <string>
#include <string_view>

namespace orbelantine::phone {

/// The session as an SVG document: the phone with what it shows, and beside it the counts and what
/// the signs mean. Any bytes may stand in the name and the address.
[[nodiscard]] std::string drawPicture(std::string_view name, std::string_view address,
                                      const Phone& phone);

} // namespace orbelantine::phone
