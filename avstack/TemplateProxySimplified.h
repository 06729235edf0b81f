#pragma once

#include "avstack/IMediaElement.h"
#include "core/common/log/Log.h"

#include <boost/function.hpp>

#include <string>
#include <utility>

namespace orbelantine {

/// An element of a chain whose work is a function: every buffer goes to it, with the element's name
/// and target, on the caller's thread. The target is registered before the first buffer. An empty
/// function throws boost::bad_function_call at the first buffer.
template <class Base>
class IMediaElement::TemplateProxySimplified : public Base {
  public:
    using Handler =
        boost::function<void(const boost::shared_ptr<IMediaBuffer>& buffer, const std::string& name,
                             const boost::shared_ptr<IMediaElement>& target)>;

    TemplateProxySimplified(Handler handler, std::string name)
        : mHandler(std::move(handler))
        , mName(std::move(name)) {}

    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override {
        // One spelling on every platform, whatever the compiler calls an instance of a template.
        const TracedFunction traced("orbelantine::IMediaElement::TemplateProxySimplified<class "
                                    "orbelantine::IMediaElement>::registerTarget");
        mTarget = target;
    }

    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        mHandler(buffer, mName, mTarget);
    }

    [[nodiscard]] std::string getName() override { return mName; }

    /// The next element; empty until registered.
    [[nodiscard]] virtual boost::shared_ptr<IMediaElement> getTarget() { return mTarget; }

  private:
    Handler mHandler;
    std::string mName;
    boost::shared_ptr<IMediaElement> mTarget;
};

} // namespace orbelantine
