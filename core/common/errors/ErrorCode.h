#pragma once

#include <boost/system/error_code.hpp>

namespace orbelantine {

/// The result of every fallible operation; a value of zero is success in every category.
using boost::system::error_code;

/// First number of the product's own codes; the areas' runs follow from 20001.
inline constexpr int kErrorBase = 20000;

/// The Windows numbers that cross to the host as they stand, on every platform.
namespace win32 {
inline constexpr int kErrorSuccess = 0;
inline constexpr int kErrorInvalidFunction = 1;
inline constexpr int kErrorFileNotFound = 2;
inline constexpr int kErrorInvalidHandle = 6;
inline constexpr int kErrorInsufficientBuffer = 122;
inline constexpr int kErrorNoMoreItems = 259;
} // namespace win32

} // namespace orbelantine
