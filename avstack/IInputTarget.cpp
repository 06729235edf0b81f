#include "avstack/IInputTarget.h"

namespace orbelantine {

std::string IInputTarget::Dummy::getName() {
    return "IInputTarget::Dummy";
}

} // namespace orbelantine
