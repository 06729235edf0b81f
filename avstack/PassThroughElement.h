#pragma once

#include "avstack/IMediaElement.h"

namespace orbelantine {

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
