#include "tools/program/ProgramMain.h"
#include "tools/virtual_phone/program/Options.h"
#include "tools/virtual_phone/program/linux/Program.h"

int main(int argc, char** argv) {
    using namespace orbelantine::phone;
    return runParsed(parseOptions(argumentsOf(argc, argv)), helpText(), [](const Options& options) {
        return runVirtualPhone(options, std::cout, std::cerr);
    });
}
