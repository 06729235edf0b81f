#include "tools/l2cap_bridge/Options.h"
#include "tools/l2cap_bridge/linux/L2capApi.h"
#include "tools/l2cap_bridge/linux/Program.h"
#include "tools/program/ProgramMain.h"

int main(int argc, char** argv) {
    using namespace orbelantine;
    return phone::runParsed(bridge::parseOptions(phone::argumentsOf(argc, argv)),
                            bridge::helpText(), [](const bridge::Options& options) {
                                return bridge::runBridge(options, bridge::L2capApi::system(),
                                                         std::cout, std::cerr);
                            });
}
