#pragma once

// Exports outside the generated scheme, with which the proxies look after an object of the host for
// as long as native code may call it. Any thread.

#ifdef _WIN32
#define ORB_BINDING_EXPORT extern "C" __declspec(dllexport)
#else
#define ORB_BINDING_EXPORT extern "C" __attribute__((visibility("default")))
#endif

/// What is told of each pin that is free again; set before the first lending.
ORB_BINDING_EXPORT void orbelantine_register_release(void (*release)(void* pin));

/// A new holder of the object that `holder`, a boost::shared_ptr, holds. The pin is released with
/// the last share of it, on any thread.
ORB_BINDING_EXPORT void* orbelantine_lend(void* holder, void* pin);

/// Deletes what orbelantine_lend gave; shares taken of it stay.
ORB_BINDING_EXPORT void orbelantine_end_lending(void* holder);

/// The version of the library, as text that stays.
ORB_BINDING_EXPORT const char* orbelantine_version();
