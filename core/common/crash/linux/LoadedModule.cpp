#include "core/common/crash/linux/LoadedModule.h"

#include <dlfcn.h>
#include <link.h>

namespace orbelantine {

LoadedModule loadedModuleAt(std::uintptr_t address) {
    dl_find_object found{};
    if (_dl_find_object(reinterpret_cast<void*>(address), &found) != 0 ||
        found.dlfo_link_map == nullptr)
        return {};
    const link_map& map = *found.dlfo_link_map;
    return {map.l_name != nullptr ? map.l_name : "", map.l_addr};
}

} // namespace orbelantine
