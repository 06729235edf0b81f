#pragma once

#include "core/common/errors/ErrorCode.h"

#include <boost/function/function_fwd.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <string>

namespace orbelantine {

class IMediaBuffer;

/// One element of a chain that hands media buffers on, on the caller's thread and without a queue.
/// Except where said, the base only logs that it was called.
class IMediaElement {
  public:
    class Dummy;
    template <class Base>
    class TemplateProxySimplified;

    virtual ~IMediaElement() = default;
    virtual void start();
    /// Calls start(), then `callback` with success, then drops it.
    virtual void start(boost::function<void(boost::system::error_code)> callback);
    virtual void stop();
    virtual void pause();
    virtual void resume();
    /// Sets the next element of the chain; it is kept alive until replaced.
    virtual void registerTarget(const boost::shared_ptr<IMediaElement>& target);
    /// Takes one buffer; whoever keeps it beyond the call keeps the pointer.
    virtual void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer);
    virtual void refresh();
    virtual void flush();
    /// Empty in the base.
    [[nodiscard]] virtual std::string getName();
};

/// The end of a chain that leads nowhere: it logs every call and drops every buffer.
class IMediaElement::Dummy : public IMediaElement {};

/// An element that hands every buffer on to its target unchanged; drops it while there is none.
template <class Interface>
class PassThroughElement : public Interface {
  public:
    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override {
        mTarget = target;
    }

    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        if (mTarget)
            mTarget->onFrame(buffer);
    }

    [[nodiscard]] virtual boost::shared_ptr<IMediaElement> getTarget() { return mTarget; }

  private:
    boost::shared_ptr<IMediaElement> mTarget;
};

} // namespace orbelantine
