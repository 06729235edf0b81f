#include "input/window/linux/XLibrary.h"

#include <dlfcn.h>

namespace orbelantine {

namespace {

template <class Function>
bool findXFunction(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
    return function != nullptr;
}

#define ORB_X_FIND(name) findXFunction(library, #name, table.name)&&
#define ORB_X_FILLER(FUNCTIONS)                                                                    \
    [](void* library, XLibrary& table) -> bool { return FUNCTIONS(ORB_X_FIND) true; }

using XTableFiller = bool (*)(void* library, XLibrary& table);

constexpr XTableFiller kXTableFillers[] = {
    ORB_X_FILLER(ORB_XCB_FUNCTIONS),          ORB_X_FILLER(ORB_XCB_INPUT_FUNCTIONS),
    ORB_X_FILLER(ORB_XCB_KEYBOARD_FUNCTIONS), ORB_X_FILLER(ORB_XCB_TEST_FUNCTIONS),
    ORB_X_FILLER(ORB_XKB_FUNCTIONS),          ORB_X_FILLER(ORB_XKB_X11_FUNCTIONS),
};

#undef ORB_X_FILLER
#undef ORB_X_FIND

} // namespace

std::optional<std::size_t> XLibrary::load(const Files& files) {
    for (std::size_t index = 0; index < files.size(); ++index) {
        void* const library = ::dlopen(files[index], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr || !kXTableFillers[index](library, *this))
            return index;
    }
    return std::nullopt;
}

} // namespace orbelantine
