#include "core/common/errors/GenericError.h"

#include "core/common/errors/SystemText.h"

#include <string>

namespace orbelantine {

namespace {

constexpr struct {
    int number;
    const char* text;
} kTexts[] = {

#define ORB_GENERIC_ERROR(name, number, text) {generic::name, text},
#include "core/common/errors/GenericErrors.inc"
#undef ORB_GENERIC_ERROR
};

// Boost's base has no virtual destructor, so that categories can last to the very end.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The generic category, to all who compare, with other texts: those of the C library are about
/// other numbers than these on every platform but one.
class GenericCategory final : public boost::system::error_category {
  public:
    constexpr GenericCategory()
        : error_category(boost::system::detail::generic_category_id) {}

    [[nodiscard]] const char* name() const noexcept override { return "generic"; }

    using boost::system::error_category::message;

    [[nodiscard]] std::string message(int value) const override {
        for (const auto& [number, text] : kTexts)
            if (number == value)
                return text;
        const std::string text = systemErrorText(value);
        return text.empty() ? boost::system::generic_category().message(value) : text;
    }
};

#pragma GCC diagnostic pop

constexpr GenericCategory kCategory;

} // namespace

error_code genericError(int number) {
    return {number, kCategory};
}

} // namespace orbelantine
