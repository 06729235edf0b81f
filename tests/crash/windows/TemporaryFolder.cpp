#include "tests/crash/Deaths.h"

#include <windows.h>

namespace orbelantine::test {

void useTemporaryFolder(const char* folder) {
    (void)SetEnvironmentVariableA("TMP", folder);
}

} // namespace orbelantine::test
