#pragma once

namespace orbelantine {

/// Does nothing but keep the pipe's implementations in a program that links this library
/// statically, so that the factory knows their names.
void initOsalPipe();

} // namespace orbelantine
