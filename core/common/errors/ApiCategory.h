#pragma once

#include "core/common/errors/ErrorCategory.h"

#include <string>
#include <utility>

namespace orbelantine {

/// Codes of the operating system, told apart by the call that failed.
template <class T>
class ApiCategory final : public ErrorCategory<T> {
  public:
    explicit ApiCategory(std::string name)
        : mName(std::move(name)) {}

    /// The failing call as "<owner>:<call>", such as "Driver:CreateFile".
    [[nodiscard]] const char* name() const noexcept override { return mName.c_str(); }

  private:
    std::string mName;
};

/// The category of `apiName`, made at its first use and alive until the process is gone. Any thread
/// may call.
[[nodiscard]] const boost::system::error_category& apiCategory(const std::string& apiName);

} // namespace orbelantine
