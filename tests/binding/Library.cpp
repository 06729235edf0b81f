#include "tests/binding/Library.h"

#include <memory>

namespace orbelantine::test {

namespace {

std::optional<Library::ArgumentError> lastError;

std::optional<std::string> textOf(const char* text) {
    return text ? std::optional<std::string>(text) : std::nullopt;
}

void general(const char* message) {
    lastError = {"general", textOf(message), std::nullopt};
}

void argument(const char* message, const char* parameter) {
    lastError = {"argument", textOf(message), textOf(parameter)};
}

void argumentNull(const char* message, const char* parameter) {
    lastError = {"argument-null", textOf(message), textOf(parameter)};
}

void argumentOutOfRange(const char* message, const char* parameter) {
    lastError = {"argument-out-of-range", textOf(message), textOf(parameter)};
}

void* keepText(const char* text) {
    return std::make_unique<std::string>(text).release();
}

void* keepWideText(const char16_t* text) {
    return std::make_unique<std::u16string>(text).release();
}

template <class Text>
Text take(void* result) {
    const std::unique_ptr<Text> kept(static_cast<Text*>(result));
    return kept ? *kept : Text();
}

using General = void(const char*);
using Argument = void(const char*, const char*);

} // namespace

const std::vector<std::string>& registeredModules() {
    static const std::vector<std::string> modules = {"Common",      "CommonOsal", "Input",
                                                     "AVStackBase", "Bluetooth",  "Audio"};
    return modules;
}

Library& Library::instance() {
    // Never unloaded, as by a host: what the library keeps to the end stays reachable.
    static Library& library = *new Library;
    return library;
}

Library::Library()
    : mLibrary(boost::dll::program_location().parent_path() / "orbelantine",
               boost::dll::load_mode::append_decorations) {
    for (const std::string& module : registeredModules())
        registerModule(module);
}

void Library::registerModule(const std::string& module) {
    mLibrary.get<void(General*, General*, General*, General*, General*, General*, General*,
                      General*, General*, General*, General*)>(
        "SWIGRegisterExceptionCallbacks_" + module)(&general, &general, &general, &general,
                                                    &general, &general, &general, &general,
                                                    &general, &general, &general);
    mLibrary.get<void(Argument*, Argument*, Argument*)>("SWIGRegisterExceptionArgumentCallbacks_" +
                                                        module)(&argument, &argumentNull,
                                                                &argumentOutOfRange);
    mLibrary.get<void(void* (*)(const char*))>("SWIGRegisterStringCallback_" + module)(&keepText);
    mLibrary.get<void(void* (*)(const char16_t*))>("SWIGRegisterWStringCallback_" +
                                                   module)(&keepWideText);
}

std::optional<Library::ArgumentError> Library::takeError() {
    return std::exchange(lastError, std::nullopt);
}

std::string Library::takeText(void* result) {
    return take<std::string>(result);
}

std::u16string Library::takeWideText(void* result) {
    return take<std::u16string>(result);
}

} // namespace orbelantine::test
