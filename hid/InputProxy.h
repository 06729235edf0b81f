#pragma once

#include "avstack/TemplateProxySimplified.h"

#include <utility>

namespace orbelantine {

/// A proxy whose function also gets the proxy's target. The target is set before the first buffer.
class InputProxy final : public IMediaElement::TemplateProxySimplified<IMediaElement> {
  public:
    using Function = boost::function<void(const boost::shared_ptr<IMediaBuffer>&,
                                          const boost::shared_ptr<IMediaElement>&)>;

    InputProxy(Function function, std::string name)
        : TemplateProxySimplified(
              [this, call = std::move(function)](const boost::shared_ptr<IMediaBuffer>& buffer) {
                  call(buffer, InputProxy::getTarget());
              },
              std::move(name)) {}
};

} // namespace orbelantine
