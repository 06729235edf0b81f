#include "tests/crash/Deaths.h"

#include <cstdlib>

namespace orbelantine::test {

void useTemporaryFolder(const char* folder) {
    (void)setenv("TMPDIR", folder, 1);
}

} // namespace orbelantine::test
