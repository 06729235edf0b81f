#include "tools/program/ProgramMain.h"
#include "tools/virtual_stack/program/linux/Options.h"
#include "tools/virtual_stack/program/linux/Program.h"

int main(int argc, char** argv) {
    using namespace orbelantine;
    return phone::runParsed(stack::parseOptions(phone::argumentsOf(argc, argv)), stack::helpText(),
                            [](const stack::Options& options) {
                                return stack::runVirtualStack(options, std::cout, std::cerr);
                            });
}
