#pragma once

namespace orbelantine {

/// For std::set_terminate: the first call in a process logs what ended it. It returns, and so the
/// run time goes on to end the process.
void terminateHandler();

} // namespace orbelantine
