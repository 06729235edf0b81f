#pragma once

#include "avstack/IMediaElement.h"

#include <string>

namespace orbelantine {

/// The element at which a chain of input ends.
class IInputTarget : public IMediaElement {
  public:
    class Dummy;
};

/// Logs every call and does nothing.
class IInputTarget::Dummy : public IInputTarget {
  public:
    [[nodiscard]] std::string getName() override;
};

} // namespace orbelantine
