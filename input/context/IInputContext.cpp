#include "input/context/IInputContext.h"

namespace orbelantine {

IInputContext::IInputContext() = default;
IInputContext::~IInputContext() = default;

} // namespace orbelantine
