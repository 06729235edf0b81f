#include "tools/program/Version.h"

namespace orbelantine::phone {

const char* version() {
    return ORBELANTINE_VERSION;
}

} // namespace orbelantine::phone
