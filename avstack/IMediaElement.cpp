#include "avstack/IMediaElement.h"

#include "core/common/log/Log.h"

#include <boost/function.hpp>

namespace orbelantine {

void IMediaElement::start() {
    ORB_TRACED();
}

void IMediaElement::start(boost::function<void(boost::system::error_code)> callback) {
    start();
    callback(error_code());
    callback.clear();
}

void IMediaElement::stop() {
    ORB_TRACED();
}

void IMediaElement::pause() {
    ORB_TRACED();
}

void IMediaElement::resume() {
    ORB_TRACED();
}

void IMediaElement::registerTarget(const boost::shared_ptr<IMediaElement>&) {
    ORB_TRACED();
}

void IMediaElement::onFrame(const boost::shared_ptr<IMediaBuffer>&) {
    ORB_TRACED();
}

void IMediaElement::refresh() {
    ORB_TRACED();
}

void IMediaElement::flush() {
    ORB_TRACED();
}

std::string IMediaElement::getName() {
    return {};
}

} // namespace orbelantine
