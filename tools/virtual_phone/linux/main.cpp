#include "tools/virtual_phone/Options.h"
#include "tools/virtual_phone/ProgramMain.h"
#include "tools/virtual_phone/linux/Program.h"

int main(int argc, char** argv) {
    using namespace orbelantine::phone;
    return runParsed(parseOptions(argumentsOf(argc, argv)), helpText(), [](const Options& options) {
        return runVirtualPhone(options, std::cout, std::cerr);
    });
}
