#include "avstack/IInputSource.h"

namespace orbelantine {

std::string IInputSource::Dummy::getName() {
    return "IInputSource::Dummy";
}

std::string IInputSource::PassThrough::getName() {
    return "IInputSource::PassThrough";
}

} // namespace orbelantine
