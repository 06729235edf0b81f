#pragma once

#include <boost/exception/exception.hpp>

#include <exception>
#include <string>
#include <utility>

namespace orbelantine {

/// A programming fault. Thrown with BOOST_THROW_EXCEPTION, which records function, file and line.
class Exception : public std::exception, public boost::exception {
  public:
    explicit Exception(std::string message)
        : mMessage(std::move(message)) {}

    [[nodiscard]] const char* what() const noexcept override { return mMessage.c_str(); }

  private:
    std::string mMessage;
};

} // namespace orbelantine
