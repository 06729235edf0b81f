#pragma once

namespace orbelantine {

/// Logs that a call within one of the steps of `signer_step` failed, with the thread's last error.
void logCallFailure(const char* step, const char* call);
/// Logs `text` as an error of the step.
void logStepError(const char* step, const char* text);

} // namespace orbelantine
