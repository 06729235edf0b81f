#pragma once

#include <functional>

namespace orbelantine {

/// Calls what reads symbols, which may be broken. False if that raised an exception on this thread;
/// it is given up where it was, and the next call is the caller's to leave out.
[[nodiscard]] bool readSymbolsGuarded(const std::function<void()>& read);

/// For the filter of exceptions: goes back into readSymbolsGuarded if the calling thread is in one.
void giveUpReadingSymbols();

} // namespace orbelantine
