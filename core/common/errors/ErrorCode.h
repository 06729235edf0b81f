#pragma once

#include <boost/system/error_code.hpp>

#include <cstdint>

namespace orbelantine {

/// The result of every fallible operation; a value of zero is success in every category.
using boost::system::error_code;

/// First number of the product's own codes; the areas' runs follow from 20001.
inline constexpr int kErrorBase = 20000;

/// The Windows numbers that cross to the host as they stand, on every platform.
namespace win32 {
#define ORB_WIN32_ERROR(name, number, ...) inline constexpr std::uint32_t name = number;
#include "core/common/errors/Win32Errors.inc"
#undef ORB_WIN32_ERROR
} // namespace win32

} // namespace orbelantine
