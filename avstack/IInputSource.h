#pragma once

#include "avstack/IMediaElement.h"

#include <string>

namespace orbelantine {

/// The element at which a chain of input begins.
class IInputSource : public IMediaElement {
  public:
    class Dummy;
    class PassThrough;
};

/// Logs every call and does nothing.
class IInputSource::Dummy : public IInputSource {
  public:
    [[nodiscard]] std::string getName() override;
};

/// Hands every buffer on to its target unchanged; drops it while there is none.
class IInputSource::PassThrough : public PassThroughElement<IInputSource> {
  public:
    [[nodiscard]] std::string getName() override;
};

} // namespace orbelantine
