#pragma once

#include "core/common/errors/ErrorCode.h"

#include <boost/type_index.hpp>

#include <string>
#include <string_view>
#include <vector>

/// Marks the operating system's own codes.
class Win32Api {};

namespace orbelantine {

/// The texts of one area: "Success", then "Error code - <Name>" for each name of its run.
class ErrorMessages {
  public:
    /// `names` are separated by ", "; the first one has the value `first`.
    ErrorMessages(int first, std::string_view names);
    /// Empty for a value outside the run.
    [[nodiscard]] std::string_view at(int value) const;

  private:
    int mFirst;
    std::vector<std::string> mTexts;
};

/// "'Category: <category>, Message: <text>'"
[[nodiscard]] std::string categorisedMessage(const char* category, std::string_view text);

/// An area's row of the table: `kFirst` and `kNames`, as ErrorMessages takes them.
template <class T>
struct ErrorAreaTable;

/// The key with which the marker is declared; it is part of the category's name.
template <class T>
inline constexpr const char* kClassKey = "struct ";
template <>
inline constexpr const char* kClassKey<Win32Api> = "class ";

// Boost's base has no virtual destructor, so that categories can last to the very end.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// The category of the marker T: one object per marker, alive until the process is gone.
template <class T>
class ErrorCategory : public boost::system::error_category {
  public:
    [[nodiscard]] static const ErrorCategory& instance() {
        // Never destroyed: error codes outlive every static.
        static const ErrorCategory& category = *new ErrorCategory;
        return category;
    }

    /// The marker's spelling, such as "struct orbelantine::IpcErrors".
    [[nodiscard]] const char* name() const noexcept override {
        static const std::string& name =
            *new std::string(kClassKey<T> + boost::typeindex::type_id<T>().pretty_name());
        return name.c_str();
    }

    using boost::system::error_category::message;

    [[nodiscard]] std::string message(int value) const override {
        static const ErrorMessages& messages =
            *new ErrorMessages(ErrorAreaTable<T>::kFirst, ErrorAreaTable<T>::kNames);
        return categorisedMessage(name(), messages.at(value));
    }

  protected:
    ErrorCategory() = default;
    ~ErrorCategory() = default;
};

#pragma GCC diagnostic pop

/// The system's text for the value; empty within the wrapper where the system has none.
template <>
std::string ErrorCategory<Win32Api>::message(int value) const;

} // namespace orbelantine
