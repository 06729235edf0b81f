#include "audio/linux/PulseLibrary.h"

#include "core/common/log/Log.h"

#include <dlfcn.h>

namespace orbelantine {

namespace {

template <class Function>
bool findPulseFunction(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(::dlsym(library, name));
    return function != nullptr;
}

bool fillPulseTable(void* library, PulseLibrary& table) {
    bool complete = library != nullptr;
#define ORB_PULSE_FIND(name)                                                                       \
    complete = complete && findPulseFunction(library, "pa_" #name, table.name);
    ORB_PULSE_FUNCTIONS(ORB_PULSE_FIND)
#undef ORB_PULSE_FIND
    return complete;
}

} // namespace

std::unique_ptr<const PulseLibrary> PulseLibrary::load(const char* file) {
    auto table = std::make_unique<PulseLibrary>();
    if (fillPulseTable(::dlopen(file, RTLD_NOW | RTLD_LOCAL), *table))
        return table;
    ORB_LOG(kLogWarning, "%s() no audio devices: %s", ::dlerror());
    return nullptr;
}

} // namespace orbelantine
