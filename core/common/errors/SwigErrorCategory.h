#pragma once

#include "core/common/errors/ErrorCode.h"

#include <string>

namespace orbelantine {

// Boost's base has no virtual destructor, so that categories can last to the very end.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The category of codes that the host makes itself. Any thread may call.
class SwigErrorCategory final : public boost::system::error_category {
  public:
    [[nodiscard]] const char* name() const noexcept override;
    using boost::system::error_category::message;
    /// "Swig Error: " and the value in decimal.
    [[nodiscard]] std::string message(int value) const override;
    /// A code of this category, which must outlive it.
    [[nodiscard]] boost::system::error_code error_code(int value) const;
};

#pragma GCC diagnostic pop

/// The host's usual category.
extern const SwigErrorCategory GlobalCategory;

} // namespace orbelantine
