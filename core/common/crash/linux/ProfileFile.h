#pragma once

#include "core/common/crash/ProfileText.h"

#include <functional>
#include <string>

namespace orbelantine {

/// The profile in `path`; an empty one if there is none, or if it belongs to another user.
[[nodiscard]] ProfileText readProfile(const std::string& path);

/// Puts what `change` makes of the profile in its place, with mode 0600: a reader finds either the
/// old one or the new one, whole, also when this process dies meanwhile. Processes take turns; one
/// that keeps the others waiting for a second is overtaken. False, with the old one left, where
/// that fails.
bool changeProfile(const std::string& path, const std::function<void(ProfileText&)>& change);

} // namespace orbelantine
