#pragma once

namespace orbelantine::phone {

/// The project's, such as "1.2.3".
[[nodiscard]] const char* version();

} // namespace orbelantine::phone
