#include "avstack/IInputSource.h"

namespace orbelantine {

std::string IInputSource::Dummy::getName() {
    return "IInputSource::Dummy";
}

void IInputSource::PassThrough::registerTarget(const boost::shared_ptr<IMediaElement>& target) {
    mTarget = target;
}

void IInputSource::PassThrough::onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) {
    if (mTarget)
        mTarget->onFrame(buffer);
}

std::string IInputSource::PassThrough::getName() {
    return "IInputSource::PassThrough";
}

boost::shared_ptr<IMediaElement> IInputSource::PassThrough::getTarget() {
    return mTarget;
}

} // namespace orbelantine
