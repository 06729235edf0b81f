#include "input/IMouseSourceDummy.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IMouseSource, IMouseSource::Dummy, "IMouseSource::Dummy");

void IMouseSource::Dummy::registerTarget(const boost::shared_ptr<IMediaElement>&) {
    ORB_TRACED();
}

void IMouseSource::Dummy::start(const boost::shared_ptr<IInputContext>&) {
    ORB_TRACED();
}

void IMouseSource::Dummy::stop() {
    ORB_TRACED();
}

bool IMouseSource::Dummy::isAbsolute() {
    return false;
}

void IMouseSource::Dummy::killFocus() {
    ORB_TRACED();
}

void IMouseSource::Dummy::mouseMove(std::int32_t, std::int32_t, std::int32_t) {}

void IMouseSource::Dummy::mouseLButton(bool, std::int32_t, std::int32_t, std::int32_t, bool) {}

void IMouseSource::Dummy::mouseRButton(bool, std::int32_t, std::int32_t, bool) {}

void IMouseSource::Dummy::touchMove(std::int32_t, std::int32_t, std::int32_t) {}

void IMouseSource::Dummy::touch(bool, std::int32_t, std::int32_t, std::int32_t, bool) {}

void IMouseSource::Dummy::rawMouseMove(std::int32_t, std::int32_t) {}

void IMouseSource::Dummy::mouseWheel(bool, std::int32_t, std::int32_t, std::int32_t) {}

} // namespace orbelantine
